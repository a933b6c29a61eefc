#pragma once

namespace kestraboot
{

/// Reads the name of a volume's file system, with critical-error boxes suppressed. False when the volume
/// has none to tell, as a reader without a card. `drivePath` is a letter and a colon.
/// `isKodak` says whether the name contains the maker's name "kodak" in any letter case: some cameras
/// mount as a fixed disk and are known by nothing else. It is false where nothing could be read.
[[nodiscard]] bool ReadVolumeFileSystem(const wchar_t* drivePath, bool& isKodak) noexcept;

} // namespace kestraboot
