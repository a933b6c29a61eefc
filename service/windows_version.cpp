#include "service/windows_version.h"

#include <windows.h>

namespace kestraboot
{
namespace
{

// winnt.h: the two forms of the record that GetVersionExW takes.
static_assert(sizeof(OSVERSIONINFOEXW) == 284);
static_assert(sizeof(OSVERSIONINFOW) == 276);

bool QueryVersion(OSVERSIONINFOEXW& version) noexcept
{
    auto* const record = reinterpret_cast<OSVERSIONINFOW*>(&version);
    version.dwOSVersionInfoSize = sizeof(OSVERSIONINFOEXW);
    if (::GetVersionExW(record)) {
        return true;
    }
    version.dwOSVersionInfoSize = sizeof(OSVERSIONINFOW); // the plain form has no product type
    return ::GetVersionExW(record) != FALSE;
}

} // namespace

WindowsVersionClass GetWindowsVersionClass() noexcept
{
    OSVERSIONINFOEXW version = {};
    if (!QueryVersion(version) || version.dwPlatformId != VER_PLATFORM_WIN32_NT) {
        return WindowsVersionClass::Other;
    }
    if (version.dwMajorVersion == 5 && version.dwMinorVersion == 1) {
        return WindowsVersionClass::Xp;
    }
    if (version.dwMajorVersion == 5 && version.dwMinorVersion == 0) {
        return WindowsVersionClass::Windows2000;
    }
    if (version.dwMajorVersion == 6 && version.dwMinorVersion == 0 &&
        version.wProductType == VER_NT_WORKSTATION) {
        return WindowsVersionClass::Vista;
    }
    return WindowsVersionClass::Other;
}

} // namespace kestraboot
