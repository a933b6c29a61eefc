// What the windows of this program have in common: each is a dialog of viewer.rc, with an object behind
// it.
#pragma once

#include "theme.h"

#include <windows.h>

#include <string>

/// winuser.h, WM_DPICHANGED: younger than the Windows for which this is compiled.
constexpr UINT kDpiChanged = 0x02E0;

/// The object behind a dialog. It lives longer than the window.
class Dialog
{
public:
    Dialog() = default;
    Dialog(const Dialog&) = delete;
    Dialog& operator=(const Dialog&) = delete;
    virtual ~Dialog() = default;

    /// Shows it until it is closed. Answers what it was closed with; -1 where no window can be made.
    INT_PTR Run(unsigned id);

    /// Shows it beside its caller's own message loop. Null where no window can be made.
    HWND Create(unsigned id);

protected:
    virtual void OnInit() {}
    /// A button, or a key of the accelerator table.
    virtual void OnCommand(unsigned id) = 0;
    /// The answer goes to the control.
    virtual LRESULT OnNotify(NMHDR& /*notice*/) { return 0; }
    /// Any other message; true if it was handled.
    virtual bool OnMessage(UINT /*message*/, WPARAM /*wide*/, LPARAM /*long*/) { return false; }
    virtual void OnThemeChange() {}

    [[nodiscard]] HWND Item(int id) const { return ::GetDlgItem(window, id); }
    LRESULT Send(int id, UINT message, WPARAM wide = 0, LPARAM value = 0) const;
    void SetText(int id, const std::wstring& text) const;
    [[nodiscard]] std::wstring GetText(int id) const;
    /// The dots per inch of the window's monitor.
    [[nodiscard]] int Dpi() const;

    HWND window = nullptr;
    Theme theme;

private:
    static INT_PTR CALLBACK Procedure(HWND window, UINT message, WPARAM wide, LPARAM value) noexcept;
    INT_PTR Handle(UINT message, WPARAM wide, LPARAM value);
};
