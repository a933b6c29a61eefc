// boot_actions.dll: an installer's actions on a running boot program for which kestraboot.exe has no
// switch. It stops one without a hand-over, so that an upgrade can replace its files, and starts one as
// the user.
//
// Both get their data as "BOOTSTART|PATH", in the property "BootProgram" or, in a script, in the
// action's own. They write what they do to the installer's log.
#include "boot_actions.h"

#include "auto_run.h"
#include "end_process.h"
#include "msi_session.h"

#include <msiquery.h>
#include <string>

namespace
{

/// The data that the action was called with.
struct BootData {
    std::wstring start; ///< BOOTSTART: "user", "always" or "never"
    std::wstring program;
};

BootData DataOf(MSIHANDLE install)
{
    const bool inScript =
        ::MsiGetMode(install, MSIRUNMODE_SCHEDULED) || ::MsiGetMode(install, MSIRUNMODE_ROLLBACK);
    const std::wstring text = Property(install, inScript ? L"CustomActionData" : L"BootProgram");
    const std::size_t bar = text.find(L'|');
    return bar == std::wstring::npos ? BootData{} : BootData{text.substr(0, bar), text.substr(bar + 1)};
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
