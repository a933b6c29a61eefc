#include "auto_run.h"

#include <windows.h>

namespace
{

constexpr const wchar_t* kRunKey = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const wchar_t* kRunValue = L"Corvane Kestrafetch";

} // namespace

// Reads with room to spare, because the library stores no terminator.
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
