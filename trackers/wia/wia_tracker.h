#pragma once

#include <windows.h>

namespace kestraboot
{

/// The thread that reports WIA devices that connect. Its argument is not used; ends with 0 when its
/// message loop gets WM_QUIT, which nothing in this system posts.
DWORD WINAPI WiaTrackerThread(LPVOID unused) noexcept;

} // namespace kestraboot
