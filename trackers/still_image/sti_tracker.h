#pragma once

#include <windows.h>

namespace kestraboot
{

/// The thread that finds still-image devices as they are added. Its argument is not used; ends with 0
/// when its message loop gets WM_QUIT, which nothing in this system posts.
DWORD WINAPI StiTrackerThread(LPVOID unused) noexcept;

} // namespace kestraboot
