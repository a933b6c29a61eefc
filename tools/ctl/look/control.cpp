// The holder of control: a process with the named mutex. Windows does not report which process
// holds it, so it is identified by its window, or as a registered boot program that runs.
#include "tools/common/handle.h"
#include "tools/ctl/check/words.h"
#include "tools/ctl/look/look.h"

#include <windows.h>
#include <algorithm>
#include <tlhelp32.h>

namespace kestraboot::tools
{
namespace
{

constexpr const wchar_t* kTitleAndClaim = L"Corvane Kestrafetch Boot";

void LookAtClaim(Control& control)
{
    const Handle claim(::OpenMutexW(SYNCHRONIZE, FALSE, kTitleAndClaim));
    const DWORD error = claim ? ERROR_SUCCESS : ::GetLastError();
    control.claimed = claim || error == ERROR_ACCESS_DENIED; // of a process with more privileges
    control.known = control.claimed || error == ERROR_FILE_NOT_FOUND;
}

BOOL CALLBACK AddOwnerOfBootWindow(HWND window, LPARAM found) noexcept
{
    wchar_t title[64] = {};
    ::GetWindowTextW(window, title, 64);
    if (::_wcsicmp(title, kTitleAndClaim) == 0) {
        DWORD processId = 0;
        if (::GetWindowThreadProcessId(window, &processId) == 0) {
            return TRUE; // the window is gone
        }
        try {
            reinterpret_cast<std::vector<DWORD>*>(found)->push_back(processId);
        } catch (const std::bad_alloc&) {
            return FALSE;
        }
    }
    return TRUE;
}

std::vector<DWORD> OwnersOfBootWindows(bool& known)
{
    std::vector<DWORD> found;
    known = ::EnumWindows(AddOwnerOfBootWindow, reinterpret_cast<LPARAM>(&found)) && known;
    std::ranges::sort(found);
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

std::optional<std::wstring> PathOf(HANDLE process)
{
    std::wstring path(32'768, L'\0'); // longer than any
    auto length = static_cast<DWORD>(path.size());
    if (!::QueryFullProcessImageNameW(process, 0, path.data(), &length)) {
        return std::nullopt;
    }
    path.resize(length);
    return path;
}

BootProcess LookAtProcess(DWORD processId)
{
    BootProcess process;
    process.id = processId;
    const Handle opened(::OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    if (opened) {
        process.path = PathOf(opened.Get());
        const std::optional<bool> elevated = IsElevated(opened.Get());
        if (elevated) { // without this answer, the process cannot be inspected
            process.account = AccountOf(opened.Get());
            process.elevated = *elevated;
        }
    }
    return process;
}

std::vector<BootProcess> RunningProxies(const std::vector<std::wstring>& proxies, bool& known)
{
    std::vector<BootProcess> found;
    const HANDLE snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE) {
        known = false;
        return found;
    }
    const Handle owner(snapshot);
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = ::Process32FirstW(snapshot, &entry); more;
         more = ::Process32NextW(snapshot, &entry)) {
        BootProcess process = LookAtProcess(entry.th32ProcessID);
        if (process.path && std::ranges::any_of(proxies, [&](const std::wstring& proxy) {
                return SameIgnoringCase(proxy, *process.path);
            })) {
            found.push_back(std::move(process));
        }
    }
    known = ::GetLastError() == ERROR_NO_MORE_FILES && known;
    return found;
}

} // namespace

Control LookAtControl(const std::vector<std::wstring>& proxies)
{
    Control control;
    LookAtClaim(control);
    for (const DWORD processId : OwnersOfBootWindows(control.known)) {
        control.processes.push_back(LookAtProcess(processId));
    }
    if (control.claimed && control.processes.empty()) {
        control.processes = RunningProxies(proxies, control.known);
    }
    return control;
}

} // namespace kestraboot::tools
