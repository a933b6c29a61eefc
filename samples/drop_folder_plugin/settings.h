#pragma once

#include <windows.h>
#include <string>

/// What the registry says: see README.md.
struct Settings {
    std::wstring folder;  ///< its full path, without a backslash at the end
    DWORD settle = 2'000; ///< milliseconds without a change until the pictures count as arrived
    DWORD retry = 5'000;  ///< milliseconds until a folder that is not there is looked for again
};

/// Reads them. A value that is wrong is traced, and the answer is false.
[[nodiscard]] bool ReadSettings(Settings& settings);
