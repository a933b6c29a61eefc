#pragma once

#include <windows.h>

namespace kestraboot::tests
{

/// The top-level window of a process by its title; null if it has none now. Other tests, which run at
/// the same time, have windows with the same title on the same desktop.
[[nodiscard]] inline HWND FindWindowOf(DWORD processId, const wchar_t* title)
{
    HWND window = nullptr;
    while ((window = ::FindWindowExW(nullptr, window, nullptr, title)) != nullptr) {
        DWORD owner = 0;
        ::GetWindowThreadProcessId(window, &owner);
        if (owner == processId) {
            break;
        }
    }
    return window;
}

[[nodiscard]] inline HWND FindOwnWindow(const wchar_t* title)
{
    return FindWindowOf(::GetCurrentProcessId(), title);
}

} // namespace kestraboot::tests
