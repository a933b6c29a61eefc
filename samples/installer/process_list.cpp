#include "process_list.h"

#include <tlhelp32.h>

namespace
{

constexpr DWORD kLongestPath = 32768;

bool Runs(HANDLE process, const std::wstring& program)
{
    std::wstring path(kLongestPath, L'\0');
    DWORD length = kLongestPath;
    return ::QueryFullProcessImageNameW(process, 0, path.data(), &length) &&
           _wcsicmp(path.c_str(), program.c_str()) == 0;
}

HANDLE Open(DWORD id)
{
    constexpr DWORD kToLookAt = PROCESS_QUERY_LIMITED_INFORMATION | SYNCHRONIZE;
    HANDLE process = ::OpenProcess(kToLookAt | PROCESS_TERMINATE, FALSE, id);
    if (process == nullptr) {
        process = ::OpenProcess(kToLookAt, FALSE, id);
    }
    return process;
}

} // namespace

std::vector<BootProcess> ProcessesOf(const std::wstring& program)
{
    std::vector<BootProcess> found;
    const HANDLE snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE) {
        return found;
    }
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = ::Process32FirstW(snapshot, &entry); more;
         more = ::Process32NextW(snapshot, &entry)) {
        const HANDLE process = Open(entry.th32ProcessID);
        if (process != nullptr && Runs(process, program)) {
            found.push_back({entry.th32ProcessID, process});
        } else if (process != nullptr) {
            ::CloseHandle(process);
        }
    }
    ::CloseHandle(snapshot);
    return found;
}
