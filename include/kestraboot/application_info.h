/// @file
/// One compatible application, as it registered itself, and the registry layout that it writes.
///
/// An application announces itself by a key named exactly "Corvane Kestrafetch" (case included) at any
/// depth below `HKEY_LOCAL_MACHINE\SOFTWARE\Corvane`, though not below another such key. Its installer
/// writes it; the library never does. *key* stands for the path of that key, for example
/// `SOFTWARE\Corvane\Viewer\1.0\Corvane Kestrafetch`.
///
/// | hive and key | value | type | meaning | when missing |
/// |---|---|---|---|---|
/// | HKLM *key* | `Name` | string | display name, compared exactly | empty |
/// | HKLM *key* | `ProxyPath` | string | the boot executable installed with it | left out |
/// | HKLM *key* | `CmdLine` | string | the executable to start | left out |
/// | HKLM *key* | `Desc` | string | description | empty |
/// | HKLM *key* | `Icon` | string | icon reference | empty |
/// | HKLM *key*`\File Formats` | `Image`, `Audio`, `Video` | string | extensions | none of that kind |
/// | HKCU, then HKLM *key*`\Preferences` | `DefaultFlag` | DWORD | nonzero: a default | 0 |
/// | the same | `AutoLaunchOnDeviceConnect` | DWORD | exactly 1: left out of the list | stays in |
/// | HKCU *key* | `SniffDepth` | DWORD | folder levels searched on a card; 0: cards are left alone | 4 |
/// | HKCU *key* above | `kestralaunchstatus` | DWORD | 0: not to launch | may launch |
/// | HKLM *key* above | `locale` | string | language of the user interface, such as `de_de` | `en_us` |
///
/// Both paths are full, stand without quotes and must exist. Extensions stand without dots, separated by
/// single blanks. *key* above is *key* up to the first `\Corvane Kestrafetch` in it: the key that holds
/// *key*, but `SOFTWARE\Corvane` itself for a product whose own key begins with these words, such as
/// `SOFTWARE\Corvane\Corvane Kestrafetch Viewer\Corvane Kestrafetch`. `SniffDepth` counts while the
/// application's own proxy is the running program.
///
/// The per-user Preferences key hides the machine-wide `DefaultFlag` as soon as it exists. The library
/// creates it, with `DefaultFlag` 0, when it reads the application for a user who has none, provided
/// that the user has a key `SOFTWARE\Corvane`; that one time the machine-wide flag still counts. The
/// leading letters of the product's key that occur in "SOFTWARE\Corvane" are lost on the way ("Sample
/// Viewer" becomes "mple Viewer"), so for such a product the right key is not created and the
/// machine-wide flag goes on counting. A DWORD of 0xFFFFFFFF counts as missing.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// One kind of media file that an application handles. A plain value.
struct formatInfo_tag {
    std::wstring Extension; ///< as written in the registry, without a dot, for example "mp3"
    std::wstring MediaType; ///< "Image", "Audio" or "Video"
};

/// One compatible application. A plain value: it owns all that it holds, copies are independent of each
/// other and of the registry, and a fresh record is empty and zero.
struct appInfo_tag {
    std::wstring Name;             ///< display name
    std::wstring ProxyPath;        ///< full path of the boot executable installed with the application
    std::wstring Desc;             ///< description
    std::wstring CmdLine;          ///< full path of the executable that is started for a device
    std::wstring Icon;             ///< icon reference, passed through unchanged
    std::wstring KeyPath;          ///< path of the application's key below HKEY_LOCAL_MACHINE
    std::uint32_t DefaultFlag = 0; ///< nonzero: a default application for device connections
    std::uint32_t SpareFlag = 0;   ///< carried with the record, never set by the library
    std::vector<formatInfo_tag> FileFormats; ///< handled file kinds, in the order read; never sorted
};
