#include "dialog.h"

#include "resource.h"

#include <vector>

INT_PTR Dialog::Run(unsigned id)
{
    return ::DialogBoxParamW(::GetModuleHandleW(nullptr), MAKEINTRESOURCEW(id), nullptr, Procedure,
                             reinterpret_cast<LPARAM>(this));
}

HWND Dialog::Create(unsigned id)
{
    return ::CreateDialogParamW(::GetModuleHandleW(nullptr), MAKEINTRESOURCEW(id), nullptr, Procedure,
                                reinterpret_cast<LPARAM>(this));
}

LRESULT Dialog::Send(int id, UINT message, WPARAM wide, LPARAM value) const
{
    return ::SendMessageW(Item(id), message, wide, value);
}

void Dialog::SetText(int id, const std::wstring& text) const
{
    if (GetText(id) != text) { // setting it again would flicker, and a screen reader would repeat it
        ::SetWindowTextW(Item(id), text.c_str());
    }
}

std::wstring Dialog::GetText(int id) const
{
    std::vector<wchar_t> text(static_cast<std::size_t>(::GetWindowTextLengthW(Item(id))) + 1);
    ::GetWindowTextW(Item(id), text.data(), static_cast<int>(text.size()));
    return text.data();
}

int Dialog::Dpi() const
{
    // Since Windows 10; before that all monitors have the same.
    using GetDpiForWindowFunction = UINT(WINAPI*)(HWND);
    static const auto ofWindow = reinterpret_cast<GetDpiForWindowFunction>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"user32.dll"), "GetDpiForWindow")));
    if (ofWindow != nullptr) {
        return static_cast<int>(ofWindow(window));
    }
    const HDC screen = ::GetDC(nullptr);
    const int dpi = ::GetDeviceCaps(screen, LOGPIXELSX);
    ::ReleaseDC(nullptr, screen);
    return dpi;
}

INT_PTR CALLBACK Dialog::Procedure(HWND window, UINT message, WPARAM wide, LPARAM value) noexcept
{
    if (message == WM_INITDIALOG) {
        ::SetWindowLongPtrW(window, DWLP_USER, value);
        reinterpret_cast<Dialog*>(value)->window = window;
    }
    auto* const dialog = reinterpret_cast<Dialog*>(::GetWindowLongPtrW(window, DWLP_USER));
    return dialog == nullptr ? FALSE : dialog->Handle(message, wide, value);
}

INT_PTR Dialog::Handle(UINT message, WPARAM wide, LPARAM value)
{
    switch (message) {
    case WM_INITDIALOG: {
        const HANDLE icon = ::LoadImageW(::GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDI_VIEWER),
                                         IMAGE_ICON, 0, 0, LR_DEFAULTSIZE | LR_SHARED);
        ::SendMessageW(window, WM_SETICON, ICON_BIG, reinterpret_cast<LPARAM>(icon));
        theme = ReadTheme();
        OnInit();
        ApplyTheme(window, theme);
        return FALSE; // OnInit has set the focus
    }
    case WM_COMMAND:
        OnCommand(LOWORD(wide));
        return TRUE;
    case WM_NOTIFY:
        ::SetWindowLongPtrW(window, DWLP_MSGRESULT, OnNotify(*reinterpret_cast<NMHDR*>(value)));
        return TRUE;
    case WM_SETTINGCHANGE:
        if (IsThemeChange(value)) {
            theme = ReadTheme();
            OnThemeChange();
            ApplyTheme(window, theme);
        }
        return FALSE;
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORBTN:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLOREDIT:
        return reinterpret_cast<INT_PTR>(
            ControlColours(reinterpret_cast<HDC>(wide), theme, message == WM_CTLCOLOREDIT));
    default:
        return OnMessage(message, wide, value) ? TRUE : FALSE;
    }
}
