#pragma once

namespace kestraboot
{

/// Reads the name of a volume's file system, with critical-error boxes suppressed. False if the
/// volume has none, for example a reader without a card. `drivePath` is a letter and a colon.
/// `isKodak` is whether the name contains the maker's name "kodak" in any case: some cameras mount
/// as a fixed disk, and nothing else identifies them. It is false if nothing could be read.
[[nodiscard]] bool ReadVolumeFileSystem(const wchar_t* drivePath, bool& isKodak) noexcept;

} // namespace kestraboot
