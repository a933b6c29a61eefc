// One compatible application, as it registered itself, and the registry layout that it writes.
//
// An application announces itself by a key named exactly "Corvane Kestrafetch" at any depth below
// HKEY_LOCAL_MACHINE\SOFTWARE\Corvane, for example
//
//   HKEY_LOCAL_MACHINE\SOFTWARE\Corvane\Viewer\1.0\Corvane Kestrafetch
//     "Name"       string   display name; GetApplicationInfo and "-default" find it by this name
//     "ProxyPath"  string   full path, unquoted, of the boot executable installed with it; must exist
//     "CmdLine"    string   full path, unquoted, of the executable to start; must exist
//     "Desc"       string   description, optional
//     "Icon"       string   icon reference, optional
//   ...\Corvane Kestrafetch\File Formats
//     "Image", "Audio", "Video"   strings   extensions without dots, separated by single blanks
//   ...\Corvane Kestrafetch\Preferences   (the same path under HKEY_CURRENT_USER goes first)
//     "DefaultFlag"                DWORD    nonzero: a default application
//     "AutoLaunchOnDeviceConnect"  DWORD    exactly 1: left out of the list of applications
//
// The per-user preferences key hides the machine-wide "DefaultFlag" as soon as it exists; the library
// creates it with "DefaultFlag" 0 when it reads the application for a user who has none. A DWORD of
// 0xFFFFFFFF counts as missing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// One kind of media file that an application handles.
struct formatInfo_tag {
    std::wstring Extension; ///< as written in the registry, without a dot, for example "mp3"
    std::wstring MediaType; ///< "Image", "Audio" or "Video"
};

/// One compatible application. A plain value; a fresh record is empty and zero.
struct appInfo_tag {
    std::wstring Name;             ///< display name
    std::wstring ProxyPath;        ///< full path of the boot executable installed with the application
    std::wstring Desc;             ///< description
    std::wstring CmdLine;          ///< full path of the executable that is started for a device
    std::wstring Icon;             ///< icon reference, passed through unchanged
    std::wstring KeyPath;          ///< path of the application's key below HKEY_LOCAL_MACHINE
    std::uint32_t DefaultFlag = 0; ///< nonzero: a default application for device connections
    std::uint32_t SpareFlag = 0;   ///< carried with the record, never set by the library
    std::vector<formatInfo_tag> FileFormats; ///< handled file kinds, in the order read
};
