#include "tests/samples/remote_window.h"

#include <algorithm>
#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

constexpr std::size_t kTextLength = 512;
constexpr DWORD kPatience = 30'000;

} // namespace

std::wstring TextOf(HWND window)
{
    wchar_t text[1024] = {};
    DWORD_PTR length = 0;
    ::SendMessageTimeoutW(window, WM_GETTEXT, 1024, reinterpret_cast<LPARAM>(text), SMTO_NORMAL,
                          kPatience, &length);
    return text;
}

void SetText(HWND control, const std::wstring& text)
{
    DWORD_PTR answer = 0;
    ::SendMessageTimeoutW(control, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()), SMTO_NORMAL,
                          kPatience, &answer);
}

void Click(HWND dialog, int button)
{
    ::PostMessageW(::GetDlgItem(dialog, button), BM_CLICK, 0, 0);
}

void Press(HWND control, WORD key)
{
    ::PostMessageW(control, WM_KEYDOWN, key, 0);
    ::PostMessageW(control, WM_KEYUP, key, 0);
}

RemoteList::RemoteList(HWND control) : list(control)
{
    DWORD processId = 0;
    ::GetWindowThreadProcessId(list, &processId);
    process = ::OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_READ | PROCESS_VM_WRITE, FALSE, processId);
    memory = ::VirtualAllocEx(process, nullptr, sizeof(LVITEMW) + kTextLength * sizeof(wchar_t),
                              MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    if (memory == nullptr) {
        throw std::runtime_error("no list view, or no memory in its process");
    }
}

RemoteList::~RemoteList()
{
    ::VirtualFreeEx(process, memory, 0, MEM_RELEASE);
    ::CloseHandle(process);
}

int RemoteList::Count() const
{
    return static_cast<int>(::SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
}

wchar_t* RemoteList::RemoteText() const
{
    return reinterpret_cast<wchar_t*>(static_cast<LVITEMW*>(memory) + 1);
}

LRESULT RemoteList::SendItem(UINT message, WPARAM row, LVITEMW& item) const
{
    ::WriteProcessMemory(process, memory, &item, sizeof item, nullptr);
    const LRESULT answer = ::SendMessageW(list, message, row, reinterpret_cast<LPARAM>(memory));
    ::ReadProcessMemory(process, memory, &item, sizeof item, nullptr);
    return answer;
}

std::wstring RemoteList::Text(int row, int column) const
{
    LVITEMW item = {};
    item.iSubItem = column;
    item.pszText = RemoteText();
    item.cchTextMax = kTextLength;
    const LRESULT length = SendItem(LVM_GETITEMTEXTW, static_cast<WPARAM>(row), item);
    std::wstring text(static_cast<std::size_t>(length), L'\0');
    ::ReadProcessMemory(process, item.pszText, text.data(), text.size() * sizeof(wchar_t), nullptr);
    return text;
}

int RemoteList::Image(int row) const
{
    LVITEMW item = {};
    item.mask = LVIF_IMAGE;
    item.iItem = row;
    item.iImage = -1;
    SendItem(LVM_GETITEMW, 0, item);
    return item.iImage;
}

std::pair<long, long> RemoteList::Position(int row) const
{
    POINT position = {-1, -1};
    ::SendMessageW(list, LVM_GETITEMPOSITION, static_cast<WPARAM>(row),
                   reinterpret_cast<LPARAM>(memory));
    ::ReadProcessMemory(process, memory, &position, sizeof position, nullptr);
    return {position.x, position.y};
}

std::vector<std::wstring> RemoteList::Column(int column) const
{
    std::vector<std::wstring> texts;
    for (int row = 0; row < Count(); ++row) {
        texts.push_back(Text(row, column));
    }
    return texts;
}

void RemoteList::Select(int row) const
{
    LVITEMW item = {};
    item.stateMask = LVIS_SELECTED | LVIS_FOCUSED;
    item.state = row < 0 ? LVIS_SELECTED : item.stateMask;
    SendItem(LVM_SETITEMSTATE, static_cast<WPARAM>(row), item);
}

int RemoteList::Find(const std::wstring& text) const
{
    const std::vector<std::wstring> texts = Column();
    const auto found = std::ranges::find(texts, text);
    return found == texts.end() ? -1 : static_cast<int>(found - texts.begin());
}

} // namespace kestraboot::tests
