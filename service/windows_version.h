#pragma once

namespace kestraboot
{

/// The releases of Windows that the system treats in a way of their own. Everything else, newer
/// releases included, is Other.
enum class WindowsVersionClass : unsigned {
    Other = 0,
    Xp = 1,          ///< 5.1
    Windows2000 = 2, ///< 5.0
    Vista = 3,       ///< 6.0, workstation
};

/// Other as well when the version cannot be had. A host without a manifest is told 6.2 from Windows 8
/// on.
[[nodiscard]] WindowsVersionClass GetWindowsVersionClass() noexcept;

} // namespace kestraboot
