// stubborn_host.exe: a boot program that ignores the request to quit. With "-uninstall" it hands over
// like any other. Without arguments it owns a window with the known title, ignores every request, and
// waits.
#include "kestraboot/kestraboot.h"

#include <windows.h>

#include <vector>

namespace
{

LRESULT CALLBACK IgnoreRequests(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    return message == WM_QUIT || message == WM_CLOSE ? 0
                                                     : ::DefWindowProcW(window, message, wParam, lParam);
}

} // namespace

int main()
{
    CKestraBootCommandHandler handler;
    std::vector<std::wstring> words;
    handler.ParseCommandLineParameter(words);
    if (!words.empty() && words[0] == L"-uninstall") {
        handler.Uninstall();
        return 0;
    }
    WNDCLASSEXW windowClass = {};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpszClassName = L"StubbornHost";
    windowClass.lpfnWndProc = IgnoreRequests;
    ::RegisterClassExW(&windowClass);
    static_cast<void>(::CreateWindowExW(0, L"StubbornHost", L"Corvane Kestrafetch Boot", WS_POPUP, 0, 0,
                                        0, 0, nullptr, nullptr, nullptr, nullptr));
    MSG message = {};
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
        ::DispatchMessageW(&message);
    }
    return 7; // it quit after all
}
