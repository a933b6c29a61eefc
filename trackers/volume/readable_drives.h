#pragma once

#include <cstdint>

namespace kestraboot
{

/// A set of drive letters: bit 0 is A:, bit 25 is Z:, as in GetLogicalDrives.
using DriveMask = std::uint32_t;

inline constexpr int kDriveLetters = 26;

/// "X:", the form in which this tracker names a drive; no backslash follows.
struct DrivePath {
    wchar_t text[3];
};

[[nodiscard]] constexpr DrivePath PathOfDrive(int letter) noexcept
{
    return {{static_cast<wchar_t>(L'A' + letter), L':', L'\0'}};
}

/// A: and B: are diskette drives. A scan takes them as Windows lists them, without a check for a
/// medium, and they are never reported.
[[nodiscard]] constexpr bool IsDisketteLetter(int letter) noexcept
{
    return letter < 2;
}

struct DriveScan {
    DriveMask readable = 0;        ///< the drives that exist, without removable ones that hold no medium
    bool removablePresent = false; ///< a removable drive other than A: and B:, with or without a medium
};

/// Scans all drive letters. Calls kernel32 alone, so that it can run while the library loads.
[[nodiscard]] DriveScan ScanReadableDrives() noexcept;

} // namespace kestraboot
