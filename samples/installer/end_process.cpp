#include "end_process.h"

namespace
{

constexpr const wchar_t* kWindowTitle = L"Corvane Kestrafetch Boot";
constexpr DWORD kMillisecondsToAnswer = 2000; // as long as "-uninstall" gives it
constexpr DWORD kMillisecondsToEnd = 5000;

BOOL CALLBACK AskToQuit(HWND window, LPARAM process)
{
    DWORD owner = 0;
    wchar_t title[64] = {};
    ::GetWindowThreadProcessId(window, &owner);
    ::GetWindowTextW(window, title, 64);
    if (owner == static_cast<DWORD>(process) && _wcsicmp(title, kWindowTitle) == 0) {
        DWORD_PTR answer = 0;
        ::SendMessageTimeoutW(window, WM_QUIT, 0, 0, SMTO_ABORTIFHUNG, kMillisecondsToAnswer, &answer);
    }
    return TRUE;
}

} // namespace

std::wstring End(const BootProcess& process)
{
    const std::wstring name = L"process " + std::to_wstring(process.id);
    ::EnumWindows(AskToQuit, static_cast<LPARAM>(process.id)); // finds none of another session's
    if (::WaitForSingleObject(process.handle, kMillisecondsToEnd) == WAIT_OBJECT_0) {
        return name + L" was asked to quit, and has";
    }
    if (!::TerminateProcess(process.handle, 0)) {
        return name + L" cannot be ended: error " + std::to_wstring(::GetLastError());
    }
    const bool ended = ::WaitForSingleObject(process.handle, kMillisecondsToEnd) == WAIT_OBJECT_0;
    return name + (ended ? L" did not quit, and was terminated" : L" does not end");
}
