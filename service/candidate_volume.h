#pragma once

namespace kestraboot
{

/// Whether a volume is of a kind that can hold camera media: a removable drive, or a fixed disk
/// whose file system has the maker's name "kodak". The volume's label does not matter.
[[nodiscard]] bool IsCandidateVolume(const wchar_t* rootPath) noexcept;

} // namespace kestraboot
