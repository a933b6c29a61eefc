#include "boot/control_window.h"

#include "boot/arrivals.h"

#include <windows.h>

namespace
{

constexpr const wchar_t* kWindowClass = L"KestraBootControl";
constexpr const wchar_t* kWindowTitle = L"Corvane Kestrafetch Boot"; // an uninstall looks for this title

LRESULT Quit() noexcept
{
    StartNothingMore();
    ::PostQuitMessage(0);
    return 0;
}

LRESULT CALLBACK ControlProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) noexcept
{
    switch (message) {
    case WM_QUIT: // sent by an uninstall; a posted one ends the loop by itself
    case WM_DESTROY:
        return Quit();
    case WM_ENDSESSION:
        return wParam != 0 ? Quit() : 0;
    default: // also answers WM_QUERYENDSESSION: "yes", at once; the session may still go on
        return ::DefWindowProcW(window, message, wParam, lParam);
    }
}

} // namespace

bool MakeControlWindow() noexcept
{
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.hInstance = ::GetModuleHandleW(nullptr);
    windowClass.lpszClassName = kWindowClass;
    windowClass.lpfnWndProc = ControlProcedure;
    // Top-level and never shown; a message-only window would not be enumerated.
    return ::RegisterClassExW(&windowClass) != 0 &&
           ::CreateWindowExW(0, kWindowClass, kWindowTitle, WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                             windowClass.hInstance, nullptr) != nullptr;
}

void ServeUntilAskedToQuit() noexcept
{
    MSG message = {};
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
    StartNothingMore(); // a posted WM_QUIT passes the window by
}
