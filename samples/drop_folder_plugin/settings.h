#pragma once

#include <windows.h>
#include <string>

/// The settings in the registry: see README.md.
struct Settings {
    std::wstring folder;  ///< its full path, without a backslash at the end
    DWORD settle = 2'000; ///< milliseconds without a change until the pictures count as arrived
    DWORD retry = 5'000;  ///< milliseconds until a missing folder is checked again
};

/// Reads them. Traces a wrong value, and returns false.
[[nodiscard]] bool ReadSettings(Settings& settings);
