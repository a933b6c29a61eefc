#include "theme.h"

#include <commctrl.h>
#include <cwchar>

namespace
{

bool IsHighContrast()
{
    HIGHCONTRASTW contrast = {};
    contrast.cbSize = sizeof contrast;
    return ::SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) &&
           (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

bool WantsDark()
{
    DWORD light = 1;
    DWORD size = sizeof light;
    ::RegGetValueW(HKEY_CURRENT_USER,
                   L"Software\\Microsoft\\Windows\\CurrentVersion\\Themes\\Personalize",
                   L"AppsUseLightTheme", RRF_RT_REG_DWORD, nullptr, &light, &size);
    return light == 0;
}

template <typename Function>
Function Find(const wchar_t* library, const char* name)
{
    const HMODULE module = ::LoadLibraryExW(library, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    return module == nullptr
               ? nullptr
               : reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(module, name)));
}

/// Younger than Windows Vista, which has no dark frames: looked up.
void DarkenFrame(HWND window, bool dark)
{
    constexpr DWORD kImmersiveDarkMode = 20; // dwmapi.h, DWMWA_USE_IMMERSIVE_DARK_MODE
    static const auto set =
        Find<HRESULT(WINAPI*)(HWND, DWORD, const void*, DWORD)>(L"dwmapi.dll", "DwmSetWindowAttribute");
    const BOOL value = dark;
    if (set != nullptr) {
        set(window, kImmersiveDarkMode, &value, sizeof value);
    }
}

BOOL CALLBACK ApplyToControl(HWND control, LPARAM parameter)
{
    const Theme& theme = *reinterpret_cast<const Theme*>(parameter);
    static const auto setStyle =
        Find<HRESULT(WINAPI*)(HWND, const wchar_t*, const wchar_t*)>(L"uxtheme.dll", "SetWindowTheme");
    wchar_t kind[32] = {};
    ::GetClassNameW(control, kind, 32);
    if (setStyle != nullptr) {
        setStyle(control, theme.dark ? L"DarkMode_Explorer" : L"Explorer", nullptr);
    }
    if (std::wcscmp(kind, WC_LISTVIEWW) == 0) {
        ::SendMessageW(control, LVM_SETBKCOLOR, 0, static_cast<LPARAM>(theme.field));
        ::SendMessageW(control, LVM_SETTEXTBKCOLOR, 0, static_cast<LPARAM>(theme.field));
        ::SendMessageW(control, LVM_SETTEXTCOLOR, 0, static_cast<LPARAM>(theme.text));
    }
    return TRUE;
}

} // namespace

Theme ReadTheme()
{
    if (!IsHighContrast() && WantsDark()) {
        return {true, RGB(0xF2, 0xF2, 0xF2), RGB(0x20, 0x20, 0x20), RGB(0x2B, 0x2B, 0x2B)};
    }
    return {false, ::GetSysColor(COLOR_WINDOWTEXT), ::GetSysColor(COLOR_3DFACE),
            ::GetSysColor(COLOR_WINDOW)};
}

void ApplyTheme(HWND window, const Theme& theme)
{
    DarkenFrame(window, theme.dark);
    ::EnumChildWindows(window, ApplyToControl, reinterpret_cast<LPARAM>(&theme));
    ::RedrawWindow(window, nullptr, nullptr, RDW_ERASE | RDW_INVALIDATE | RDW_ALLCHILDREN | RDW_FRAME);
}

HBRUSH ControlColours(HDC context, const Theme& theme, bool isField)
{
    if (!theme.dark) {
        return nullptr;
    }
    static const HBRUSH behindWindow = ::CreateSolidBrush(theme.window);
    static const HBRUSH behindField = ::CreateSolidBrush(theme.field);
    ::SetTextColor(context, theme.text);
    ::SetBkColor(context, isField ? theme.field : theme.window);
    return isField ? behindField : behindWindow;
}

bool IsThemeChange(LPARAM setting)
{
    const auto* const area = reinterpret_cast<const wchar_t*>(setting);
    return area != nullptr && std::wcscmp(area, L"ImmersiveColorSet") == 0;
}
