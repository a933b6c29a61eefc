// The other running copies of this boot executable.
#pragma once

#include <windows.h>
#include <string>

namespace kestraboot
{

/// Asks every other process whose main executable is `executablePath` (in any case) to quit and
/// terminates it 2 s later, one after another. True if there was one. Processes that cannot be
/// opened or queried are skipped.
[[nodiscard]] bool StopOtherInstances(DWORD ownProcessId, const std::wstring& executablePath);

/// EnumWindows callback: sends WM_QUIT to the first window that has a boot executable's title, and
/// stops the enumeration there. `unused` is ignored.
BOOL CALLBACK CloseBootWindowsProc(HWND window, LPARAM unused) noexcept;

} // namespace kestraboot
