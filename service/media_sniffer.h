#pragma once

#include <string>

namespace kestraboot
{

/// Whether an arrived volume can hold camera media and really holds a supported file. Tries three times,
/// a second apart, since a card may still be settling: a volume without media takes three seconds and
/// three walks. Reads the application registry with a handler of its own, on the calling thread; ends
/// the process when no compatible application is installed. `rootPath` is cut at 259 characters.
[[nodiscard]] bool CheckVolumeForMedia(const std::wstring& rootPath) noexcept;

/// One try of the above: whether a supported file lies within the search depth.
[[nodiscard]] bool SniffMediaContent(const std::wstring& rootPath) noexcept;

} // namespace kestraboot
