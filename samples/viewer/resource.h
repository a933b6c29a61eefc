// The numbers of the resources in viewer.rc. Plain preprocessor text, so that a resource compiler reads
// it too.
#pragma once

#define IDI_VIEWER 1

// ---- Windows and their controls
#define IDD_CHOOSER 100
#define IDC_QUESTION 101
#define IDC_APPLICATIONS 102
#define IDC_ALWAYS 103

#define IDD_DEVICE 120
#define IDC_ARRIVED 121
#define IDC_IDENTIFIER_LABEL 122
#define IDC_IDENTIFIER 123

#define IDD_SHEET 140
#define IDC_STATUS 141
#define IDC_PICTURES 142
#define IDC_DETAILS 143
#define IDC_FOLDER_LABEL 144
#define IDC_FOLDER 145
#define IDC_BROWSE 146
#define IDC_COPY_ALL 147
#define IDC_COPY_SELECTED 148
#define IDC_ACTION 149
#define IDC_PROGRESS 150

#define IDR_KEYS 160
#define ID_SELECT_ALL 161

// ---- Texts
#define IDS_TITLE 200
#define IDS_ASK_DEVICE 201
#define IDS_ASK 202
#define IDS_SAME_NAME 203
#define IDS_NOTHING_TO_CHOOSE 204
#define IDS_VANISHED 205
#define IDS_NOT_REMEMBERED 206
#define IDS_COLUMN_NAME 207
#define IDS_COLUMN_DESCRIPTION 208

// The device that arrived, by the words of the command line.
#define IDS_VOLUME 220
#define IDS_CAMERA 221
#define IDS_SCANNER 222
#define IDS_MOBILE 223
#define IDS_VIDEO 224
#define IDS_AUDIO 225
#define IDS_ARCHIVE 226
#define IDS_UNKNOWN 227
#define IDS_NO_DEVICE 228
#define IDS_BY_HAND 229

#define IDS_SHEET_TITLE 240
#define IDS_LOOKING 241
#define IDS_READING 242
#define IDS_ALL_READ 243
#define IDS_UNREADABLE_PICTURES 244
#define IDS_UNREADABLE_FOLDERS 245
#define IDS_GONE 246
#define IDS_LABEL 247
#define IDS_LABEL_UNREADABLE 248
#define IDS_DETAILS 249
#define IDS_DETAILS_UNREAD 250
#define IDS_DETAILS_UNREADABLE 251
#define IDS_TAKEN 252

#define IDS_FOLDER_NAME 270
#define IDS_PICK_FOLDER 271
#define IDS_COPYING 272
#define IDS_COPIED 273
#define IDS_CANCELLED 274
#define IDS_GONE_COPYING 275
#define IDS_STOPPED 276
#define IDS_ALREADY_THERE 277
#define IDS_NOT_COPIED 278
#define IDS_NO_FOLDER 279
