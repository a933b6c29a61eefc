#pragma once

#include <windows.h>

#include <string>
#include <vector>

/// A process of the boot program.
struct BootProcess {
    DWORD id;
    HANDLE
    handle; ///< the caller's to close; may be waited for and, as far as the account may, terminated
};

/// The processes whose program is this file, but not those that this account may not even look at.
std::vector<BootProcess> ProcessesOf(const std::wstring& program);
