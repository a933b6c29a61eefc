#pragma once

#include <string>

namespace kestraboot
{

/// Whether an arrived volume can hold camera media and holds a supported file. Scans it up to three
/// times and waits 1 s after each failure, because a card may still be settling: a volume without
/// media takes 3 s and three scans. Reads the application registry with a handler of its own, on
/// the calling thread; ends the process if no compatible application is installed. `rootPath` is
/// cut at 259 characters.
[[nodiscard]] bool CheckVolumeForMedia(const std::wstring& rootPath) noexcept;

/// One scan of the above: whether a supported file is within the search depth.
[[nodiscard]] bool SniffMediaContent(const std::wstring& rootPath) noexcept;

} // namespace kestraboot
