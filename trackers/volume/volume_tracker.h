#pragma once

#include <windows.h>

namespace kestraboot
{

/// The thread that watches drive letters. Its argument is not used; ends with 0 when its message loop
/// gets WM_QUIT, which nothing in this system posts.
DWORD WINAPI VolumeTrackerThread(LPVOID unused) noexcept;

} // namespace kestraboot
