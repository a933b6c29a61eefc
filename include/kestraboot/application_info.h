/// @file
/// The registry layout that a compatible application writes, and the record that the library makes of
/// it.
///
/// A compatible application announces itself by a registry key with the exact name
/// "Corvane Kestrafetch" (case included), at any depth below `HKEY_LOCAL_MACHINE\SOFTWARE\Corvane`. A
/// key below another such key does not count. The installer of the application writes the key; the
/// library never does. *key* is the path of that key, for example
/// `SOFTWARE\Corvane\Viewer\1.0\Corvane Kestrafetch`.
///
/// | hive and key | value | type | meaning | when missing |
/// |---|---|---|---|---|
/// | HKLM *key* | `Name` | string | display name, compared exactly | empty |
/// | HKLM *key* | `ProxyPath` | string | the boot executable installed with the application | left out |
/// | HKLM *key* | `CmdLine` | string | the executable to start | left out |
/// | HKLM *key* | `Desc` | string | description | empty |
/// | HKLM *key* | `Icon` | string | icon reference | empty |
/// | HKLM *key*`\File Formats` | `Image`, `Audio`, `Video` | string | extensions | none of that kind |
/// | HKCU, then HKLM *key*`\Preferences` | `DefaultFlag` | DWORD | nonzero: a default | 0 |
/// | the same | `AutoLaunchOnDeviceConnect` | DWORD | exactly 1: left out of the list | in the list |
/// | HKCU *key* | `SniffDepth` | DWORD | folder levels scanned on a card; 0: cards are ignored | 4 |
/// | HKCU *parent* | `kestralaunchstatus` | DWORD | 0: not to launch | may launch |
/// | HKLM *parent* | `locale` | string | language of the user interface, such as `de_de` | `en_us` |
///
/// `ProxyPath` and `CmdLine` are full paths without quotes, and both files must exist. Extensions have
/// no dots; single blanks separate them. The library reads the 64-bit view of the registry, and
/// applications under HKLM alone. `SniffDepth` counts for one application: the one whose proxy is the
/// running program.
///
/// Do not name a .cmd or .bat file as `CmdLine`: Windows passes the command line of such a file to
/// cmd.exe, and a device's name in it can then run commands.
///
/// *parent* is *key* up to its first `\Corvane Kestrafetch`. That is the key above *key*, with one
/// exception: if the name of the product's own key begins with these words, *parent* is
/// `SOFTWARE\Corvane` itself. An example is
/// `SOFTWARE\Corvane\Corvane Kestrafetch Viewer\Corvane Kestrafetch`.
///
/// **Name.** It is one text for all users of the machine. The library never translates it and shows it
/// in one trace line alone. An installer may write a translated name, but every caller of
/// `kestraboot.exe -default`, SetApplicationDefaultStatus() or GetApplicationInfo() must then pass that
/// same text. If two applications have one name, these calls find the first in the order of the list.
///
/// **DefaultFlag.** Once the user has a Preferences key, it hides the machine's `DefaultFlag`. If the
/// user has none, but has a key `SOFTWARE\Corvane`, the library creates it, with `DefaultFlag` 0, when
/// it reads the application. For this one reading the machine's flag still counts.
///
/// For some products the library creates the wrong key. It drops the first letters of the product key's
/// name for as long as each occurs in "SOFTWARE\Corvane": "Sample Viewer" becomes "mple Viewer". For
/// such a product the machine's flag goes on counting.
///
/// A DWORD of 0xFFFFFFFF counts as missing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// One kind of media file that an application handles. A plain value.
struct formatInfo_tag {
    std::wstring Extension; ///< as written in the registry, without a dot, for example "mp3"
    std::wstring MediaType; ///< "Image", "Audio" or "Video"
};

/// One compatible application. A plain value: a copy is independent of the original and of the
/// registry, and a new record is empty and zero.
struct appInfo_tag {
    std::wstring Name;             ///< display name
    std::wstring ProxyPath;        ///< full path of the boot executable installed with the application
    std::wstring Desc;             ///< description
    std::wstring CmdLine;          ///< full path of the executable that is started for a device
    std::wstring Icon;             ///< icon reference, passed through unchanged
    std::wstring KeyPath;          ///< path of the application's key below HKEY_LOCAL_MACHINE
    std::uint32_t DefaultFlag = 0; ///< nonzero: a default application for device connections
    std::uint32_t SpareFlag = 0;   ///< part of the record, never set by the library
    std::vector<formatInfo_tag> FileFormats; ///< supported formats, in the order read; not sorted
};
