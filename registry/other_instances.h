// The other running copies of this boot executable.
#pragma once

#include <windows.h>
#include <string>

namespace kestraboot
{

/// Asks every other process whose main executable is `executablePath` (without regard to case) to quit
/// and ends it two seconds later, one after another. True when there was one. Processes that cannot be
/// opened or looked into are passed over.
[[nodiscard]] bool StopOtherInstances(DWORD ownProcessId, const std::wstring& executablePath);

/// EnumWindows callback: sends WM_QUIT to the first window titled as a boot executable's and stops the
/// enumeration there. `unused` is not used.
BOOL CALLBACK CloseBootWindowsProc(HWND window, LPARAM unused) noexcept;

} // namespace kestraboot
