#include "boot/control_window.h"

#include <windows.h>

namespace
{

constexpr const wchar_t* kWindowClass = L"KestraBootControl";
constexpr const wchar_t* kWindowTitle = L"Corvane Kestrafetch Boot"; // an uninstall looks for this title

LRESULT CALLBACK ControlProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    switch (message) {
    case WM_QUIT: // sent by an uninstall; a posted one ends the loop by itself
    case WM_DESTROY:
        ::PostQuitMessage(0);
        return 0;
    case WM_ENDSESSION:
        if (wParam != 0) {
            ::PostQuitMessage(0);
        }
        return 0;
    default:
        return ::DefWindowProcW(window, message, wParam, lParam);
    }
}

} // namespace

bool ServeUntilAskedToQuit() noexcept
{
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.hInstance = ::GetModuleHandleW(nullptr);
    windowClass.lpszClassName = kWindowClass;
    windowClass.lpfnWndProc = ControlProcedure;
    // Top-level and never shown; a message-only window would not be enumerated.
    if (::RegisterClassExW(&windowClass) == 0 ||
        ::CreateWindowExW(0, kWindowClass, kWindowTitle, WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                          windowClass.hInstance, nullptr) == nullptr) {
        return false;
    }
    MSG message = {};
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
    return true;
}
