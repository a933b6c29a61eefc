// A window of another process, read and driven by the messages of standard controls.
#pragma once

#include <windows.h>

#include <commctrl.h>
#include <string>
#include <utility>
#include <vector>

namespace kestraboot::tests
{

/// The text of any window or control, as a screen reader gets it. Empty for a process that does not
/// answer within 30 s.
[[nodiscard]] std::wstring TextOf(HWND window);

void SetText(HWND control, const std::wstring& text);

/// A click that does not wait for its effect, such as a message box.
void Click(HWND dialog, int button);

/// A key, as from the keyboard.
void Press(HWND control, WORD key);

/// A list view of another process. Its records are written into that process's memory.
class RemoteList
{
public:
    explicit RemoteList(HWND list);
    RemoteList(const RemoteList&) = delete;
    RemoteList& operator=(const RemoteList&) = delete;
    ~RemoteList();

    [[nodiscard]] int Count() const;
    [[nodiscard]] std::wstring Text(int row, int column = 0) const;
    [[nodiscard]] int Image(int row) const;
    /// Of an icon view, in pixels: x and y.
    [[nodiscard]] std::pair<long, long> Position(int row) const;
    [[nodiscard]] std::vector<std::wstring> Column(int column = 0) const;
    /// Selects a row, or adds it to the selection of a list of several; -1: all of them.
    void Select(int row) const;
    /// The row with that text; -1 if there is none.
    [[nodiscard]] int Find(const std::wstring& text) const;

private:
    /// Sends a message about an item, which is copied there and back.
    LRESULT SendItem(UINT message, WPARAM row, LVITEMW& item) const;
    [[nodiscard]] wchar_t* RemoteText() const;

    HWND list;
    HANDLE process = nullptr;
    void* memory = nullptr; ///< in that process: an LVITEMW and a text
};

} // namespace kestraboot::tests
