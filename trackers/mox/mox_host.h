#pragma once

#include <windows.h>

namespace kestraboot
{

/// The thread that finds device plugins: waits for the phone manager, scans the plugin folder once,
/// starts a tracker for each source, and ends with 0. Its argument is not used.
DWORD WINAPI MoxHostThread(LPVOID unused) noexcept;

} // namespace kestraboot
