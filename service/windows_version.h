#pragma once

namespace kestraboot
{

/// The releases of Windows for which the system has rules of their own. Every other release, newer
/// ones included, is Other.
enum class WindowsVersionClass : unsigned {
    Other = 0,
    Xp = 1,          ///< 5.1
    Windows2000 = 2, ///< 5.0
    Vista = 3,       ///< 6.0, workstation
};

/// Other also if the version cannot be read. Windows 8 and later report 6.2 to a host without a
/// manifest.
[[nodiscard]] WindowsVersionClass GetWindowsVersionClass() noexcept;

} // namespace kestraboot
