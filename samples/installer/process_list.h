#pragma once

#include <windows.h>

#include <string>
#include <vector>

/// A process of the boot program.
struct BootProcess {
    DWORD id;
    HANDLE
    handle; ///< the caller closes it; allows waiting and, as far as the account may, terminating
};

/// The processes whose program is this file, except for those that this account may not query.
std::vector<BootProcess> ProcessesOf(const std::wstring& program);
