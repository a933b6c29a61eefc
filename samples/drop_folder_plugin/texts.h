#pragma once

// Every text of the plugin. Those that a person reads are ready to be translated; the names in the
// registry and the extensions are not to be.
namespace texts
{

// ---- The registry, below HKEY_CURRENT_USER
inline constexpr const wchar_t* kKey = L"SOFTWARE\\Corvane\\Drop Folder";
inline constexpr const wchar_t* kFolderValue = L"Folder";
inline constexpr const wchar_t* kSettleValue = L"SettleMilliseconds";
inline constexpr const wchar_t* kRetryValue = L"RetryMilliseconds";

// ---- The extensions of a picture, in lower case
inline constexpr const wchar_t* kPictureExtensions[] = {L".jpg",  L".jpeg", L".png", L".tif", L".tiff",
                                                        L".heic", L".dng",  L".bmp", L".gif"};

// ---- Texts for people
inline constexpr const wchar_t* kPluginName = L"Drop folder"; // at most 259 characters

// The trace: kOpening, the folder or the value, one of the texts below, kClosing.
inline constexpr const wchar_t* kOpening = L"<DropFolder><";
inline constexpr const wchar_t* kClosing = L">";
inline constexpr const wchar_t* kNoValue = L": the value cannot be read. No folder is watched.";
inline constexpr const wchar_t* kNotFullPath = L": not the full path of a folder. No folder is watched.";
inline constexpr const wchar_t* kNotFolder = L": a file, not a folder. No folder is watched.";
inline constexpr const wchar_t* kBadDuration =
    L": not a number from 100 to 3600000. No folder is watched.";
inline constexpr const wchar_t* kNoThread = L": no thread can be started. No folder is watched.";
inline constexpr const wchar_t* kWatching = L": being watched.";
inline constexpr const wchar_t* kAbsent = L": not there. It is watched once it comes.";
inline constexpr const wchar_t* kGone = L": gone.";
inline constexpr const wchar_t* kOverflow = L": too many changes at once. The whole folder is read.";
inline constexpr const wchar_t* kBusy = L": still being written. The report waits for it.";
inline constexpr const wchar_t* kReported = L": reported, with this number of new pictures: ";
inline constexpr const wchar_t* kNotReported = L": the host took no report. It is tried again.";
inline constexpr const wchar_t* kOutOfMemory = L"<DropFolder><Out of memory. It is tried again.>";

} // namespace texts
