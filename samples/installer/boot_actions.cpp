// boot_actions.dll: an installer's actions on a running boot program for which kestraboot.exe has no
// switch. It stops one without a hand-over, so that an upgrade can replace its files, and starts one as
// the user.
//
// Both get their data as "BOOTSTART|PATH", in the property "BootProgram" or, in a script, in the
// action's own. They write what they do to the installer's log.
#include "boot_actions.h"

#include "process_list.h"

#include <windows.h>

#include <msiquery.h>
#include <string>

namespace
{

constexpr const wchar_t* kWindowTitle = L"Corvane Kestrafetch Boot";
constexpr const wchar_t* kRunKey = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const wchar_t* kRunValue = L"Corvane Kestrafetch";
constexpr DWORD kMillisecondsToAnswer = 2000; // as long as "-uninstall" gives it
constexpr DWORD kMillisecondsToEnd = 5000;

/// The data that the action was called with.
struct BootData {
    std::wstring start; ///< BOOTSTART: "user", "always" or "never"
    std::wstring program;
};

std::wstring Property(MSIHANDLE install, const wchar_t* name)
{
    wchar_t none[1] = {};
    DWORD length = 0;
    if (::MsiGetPropertyW(install, name, none, &length) != ERROR_MORE_DATA) {
        return {};
    }
    std::wstring value(length + 1, L'\0');
    length = static_cast<DWORD>(value.size());
    if (::MsiGetPropertyW(install, name, value.data(), &length) != ERROR_SUCCESS) {
        return {};
    }
    value.resize(length);
    return value;
}

BootData DataOf(MSIHANDLE install)
{
    const bool inScript =
        ::MsiGetMode(install, MSIRUNMODE_SCHEDULED) || ::MsiGetMode(install, MSIRUNMODE_ROLLBACK);
    const std::wstring text = Property(install, inScript ? L"CustomActionData" : L"BootProgram");
    const std::size_t bar = text.find(L'|');
    return bar == std::wstring::npos ? BootData{} : BootData{text.substr(0, bar), text.substr(bar + 1)};
}

void Log(MSIHANDLE install, const std::wstring& text)
{
    const MSIHANDLE record = ::MsiCreateRecord(1);
    // The text is data, not a format: a path may hold brackets.
    ::MsiRecordSetStringW(record, 0, L"kestraboot: [1]");
    ::MsiRecordSetStringW(record, 1, text.c_str());
    ::MsiProcessMessage(install, INSTALLMESSAGE_INFO, record);
    ::MsiCloseHandle(record);
}

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

/// Whether a program that starts from here would have more privileges than the user's own programs, or
/// run as another account.
bool HasMoreThanTheUser()
{
    HANDLE token = nullptr;
    if (!::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token)) {
        return true;
    }
    TOKEN_ELEVATION_TYPE type = TokenElevationTypeFull;
    alignas(TOKEN_USER) BYTE user[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE] = {};
    DWORD size = 0;
    const bool known = ::GetTokenInformation(token, TokenElevationType, &type, sizeof type, &size) &&
                       ::GetTokenInformation(token, TokenUser, user, sizeof user, &size);
    const bool isSystem = known && ::IsWellKnownSid(reinterpret_cast<const TOKEN_USER*>(user)->User.Sid,
                                                    WinLocalSystemSid);
    ::CloseHandle(token);
    return !known || type == TokenElevationTypeFull || isSystem;
}

std::wstring Start(MSIHANDLE install, const BootData& data)
{
    if (::MsiGetMode(install, MSIRUNMODE_REBOOTATEND)) { // the program would run with an older library
        return L"not started: a file was in use, and is replaced at the next restart of Windows";
    }
    if (data.start == L"never" || (data.start != L"always" && HasMoreThanTheUser())) {
        return L"not started: the next log-on starts it (BOOTSTART=" + data.start + L")";
    }
    const std::wstring folder = data.program.substr(0, data.program.find_last_of(L'\\') + 1);
    std::wstring line = L"\"" + data.program + L"\"";
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    if (!::CreateProcessW(data.program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                          folder.c_str(), &startup, &process)) {
        return L"not started: error " + std::to_wstring(::GetLastError());
    }
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return L"process " + std::to_wstring(process.dwProcessId) + L" started";
}

/// Empty if there is none. Reads with room to spare, because the library stores no terminator.
std::wstring AutoRun()
{
    wchar_t line[2048] = {};
    DWORD size = sizeof line - sizeof(wchar_t);
    const LSTATUS status =
        ::RegGetValueW(HKEY_LOCAL_MACHINE, kRunKey, kRunValue, RRF_RT_REG_SZ, nullptr, line, &size);
    return status == ERROR_SUCCESS ? line : L"";
}

std::wstring SetAutoRun(const std::wstring& line)
{
    HKEY run = nullptr;
    LSTATUS status = ::RegOpenKeyExW(HKEY_LOCAL_MACHINE, kRunKey, 0, KEY_SET_VALUE, &run);
    if (status == ERROR_SUCCESS) {
        const DWORD size = static_cast<DWORD>((line.size() + 1) * sizeof(wchar_t));
        status = line.empty() ? ::RegDeleteValueW(run, kRunValue)
                              : ::RegSetValueExW(run, kRunValue, 0, REG_SZ,
                                                 reinterpret_cast<const BYTE*>(line.c_str()), size);
        ::RegCloseKey(run);
    }
    const std::wstring what = line.empty() ? L"no auto-run entry" : L"auto-run entry " + line;
    return what + (status == ERROR_SUCCESS || (line.empty() && status == ERROR_FILE_NOT_FOUND)
                       ? L", as before"
                       : L" cannot be put back: error " + std::to_wstring(status));
}

} // namespace

UINT __stdcall EndBootProgram(MSIHANDLE install)
{
    for (const BootProcess& process : ProcessesOf(DataOf(install).program)) {
        Log(install, End(process));
        ::CloseHandle(process.handle);
    }
    return ERROR_SUCCESS;
}

UINT __stdcall StartBootProgram(MSIHANDLE install)
{
    Log(install, Start(install, DataOf(install)));
    return ERROR_SUCCESS;
}

UINT __stdcall RememberAutoRun(MSIHANDLE install)
{
    // Its data is the property of the action's name.
    return ::MsiSetPropertyW(install, L"RestoreAutoRun", AutoRun().c_str());
}

UINT __stdcall RestoreAutoRun(MSIHANDLE install)
{
    Log(install, SetAutoRun(Property(install, L"CustomActionData")));
    return ERROR_SUCCESS;
}
