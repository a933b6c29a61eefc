#include "tests/real_windows/this_machine.h"

#include <windows.h>

#include <cstdio>
#include <cstring>

namespace kestraboot::real_windows
{
namespace
{

template <typename Function>
Function Find(const wchar_t* module, const char* name)
{
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(module), name)));
}

/// A value of HKEY_LOCAL_MACHINE's CurrentVersion key; empty if it is missing.
std::string CurrentVersion(const wchar_t* name)
{
    wchar_t text[256] = {};
    DWORD size = sizeof text;
    DWORD number = 0;
    DWORD numberSize = sizeof number;
    const wchar_t* const key = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion";
    char narrow[1024] = {};
    if (::RegGetValueW(HKEY_LOCAL_MACHINE, key, name, RRF_RT_REG_DWORD, nullptr, &number, &numberSize) ==
        ERROR_SUCCESS) {
        std::snprintf(narrow, sizeof narrow, "%lu", number);
    } else if (::RegGetValueW(HKEY_LOCAL_MACHINE, key, name, RRF_RT_REG_SZ, nullptr, text, &size) ==
               ERROR_SUCCESS) {
        ::WideCharToMultiByte(CP_UTF8, 0, text, -1, narrow, sizeof narrow, nullptr, nullptr);
    }
    return narrow;
}

/// As Windows itself reports it; GetVersionExW reports an older one to programs without a manifest.
std::string Version()
{
    RTL_OSVERSIONINFOEXW version = {};
    version.dwOSVersionInfoSize = sizeof version;
    const auto get = Find<LONG(WINAPI*)(RTL_OSVERSIONINFOEXW*)>(L"ntdll.dll", "RtlGetVersion");
    if (get == nullptr || get(&version) != 0) {
        return "cannot be had";
    }
    char text[128] = {};
    std::snprintf(text, sizeof text, "%lu.%lu.%lu", version.dwMajorVersion, version.dwMinorVersion,
                  version.dwBuildNumber);
    std::string all = text + (CurrentVersion(L"UBR").empty() ? "" : '.' + CurrentVersion(L"UBR"));
    if (version.wServicePackMajor != 0) {
        all += ", Service Pack " + std::to_string(version.wServicePackMajor);
    }
    all += version.wProductType == VER_NT_WORKSTATION ? ", workstation" : ", server";
    // The name in the registry stayed that of Windows 10.
    constexpr DWORD kFirstOfWindows11 = 22000;
    return all +
           (version.wProductType == VER_NT_WORKSTATION && version.dwBuildNumber >= kFirstOfWindows11
                ? " (Windows 11)"
                : "");
}

std::string Edition()
{
    std::string all;
    for (const wchar_t* const name : {L"ProductName", L"EditionID", L"DisplayVersion", L"BuildLabEx"}) {
        const std::string value = CurrentVersion(name);
        all += (all.empty() || value.empty() ? "" : ", ") + value;
    }
    return all;
}

std::string Processor()
{
    USHORT process = 0;
    USHORT machine = 0;
    const auto isWow = Find<BOOL(WINAPI*)(HANDLE, USHORT*, USHORT*)>(L"kernel32.dll", "IsWow64Process2");
    constexpr USHORT kArm64 = 0xAA64; // IMAGE_FILE_MACHINE_ARM64
    const bool emulated =
        isWow != nullptr && isWow(::GetCurrentProcess(), &process, &machine) && machine == kArm64;
    SYSTEM_INFO system = {};
    ::GetSystemInfo(&system);
    MEMORYSTATUSEX memory = {};
    memory.dwLength = sizeof memory;
    ::GlobalMemoryStatusEx(&memory);
    return std::to_string(system.dwNumberOfProcessors) +
           (emulated ? " of ARM64, which emulate x64, " : " of x64, ") +
           std::to_string(memory.ullTotalPhys >> 20) + " MB of memory";
}

std::string Rights()
{
    HANDLE token = nullptr;
    TOKEN_ELEVATION elevation = {};
    DWORD size = 0;
    ::OpenProcessToken(::GetCurrentProcess(), TOKEN_QUERY, &token);
    const bool known =
        ::GetTokenInformation(token, TokenElevation, &elevation, sizeof elevation, &size) != FALSE;
    ::CloseHandle(token);
    return !known                           ? "cannot be had"
           : elevation.TokenIsElevated != 0 ? "an administrator's"
                                            : "a standard user's";
}

std::string Language()
{
    wchar_t wide[LOCALE_NAME_MAX_LENGTH] = {};
    ::GetUserDefaultLocaleName(wide, LOCALE_NAME_MAX_LENGTH);
    char name[256] = {};
    ::WideCharToMultiByte(CP_UTF8, 0, wide, -1, name, sizeof name, nullptr, nullptr);
    return std::string(name) + ", code pages " + std::to_string(::GetACP()) + " and " +
           std::to_string(::GetOEMCP());
}

} // namespace

std::string WineVersion()
{
    const auto version = Find<const char*(CDECL*)()>(L"ntdll.dll", "wine_get_version");
    if (version == nullptr) {
        return "";
    }
    const char* system = "";
    const char* release = "";
    const auto host =
        Find<void(CDECL*)(const char**, const char**)>(L"ntdll.dll", "wine_get_host_version");
    if (host != nullptr) {
        host(&system, &release);
    }
    return std::string("Wine ") + version() + " on " + system + ' ' + release;
}

std::vector<std::pair<std::string, std::string>> ThisMachine()
{
    const std::string wine = WineVersion();
    return {{"Windows", Version()},
            {"Edition", Edition()},
            {"Real", wine.empty() ? "yes: no sign of Wine" : "no: " + wine},
            {"Processors", Processor()},
            {"Rights", Rights()},
            {"Language", Language()},
            {"Session", ::GetSystemMetrics(SM_REMOTESESSION) != 0 ? "remote" : "local"}};
}

} // namespace kestraboot::real_windows
