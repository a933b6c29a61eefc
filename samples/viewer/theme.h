// Light or dark, as the user set it for programs. Standard controls support light alone, so the program
// sets the dark colours one by one.
#pragma once

#include <windows.h>

/// Which colours a window has. In high contrast, and in light, they are the system's.
struct Theme {
    bool dark = false;
    COLORREF text = 0;
    COLORREF window = 0; ///< behind labels and buttons
    COLORREF field = 0;  ///< behind lists and edit controls
};

Theme ReadTheme();

/// Gives a window's frame, its lists and its other controls the colours.
void ApplyTheme(HWND window, const Theme& theme);

/// The answer to WM_CTLCOLORDLG, WM_CTLCOLORSTATIC, WM_CTLCOLOREDIT and WM_CTLCOLORBTN of a dialog:
/// null leaves the system's colours. `isField`: an edit control. The brush belongs to the program.
HBRUSH ControlColours(HDC context, const Theme& theme, bool isField);

/// Whether this WM_SETTINGCHANGE reports that the user changed light and dark.
bool IsThemeChange(LPARAM setting);
