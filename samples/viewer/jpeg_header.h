// The segments before the picture data of a JPEG.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

struct PictureSize {
    unsigned width = 0; ///< in pixels
    unsigned height = 0;
};

/// The contents of the first segment for which `isWanted` is true, as
/// far as `file`, its beginning, has them. Empty if there is none. Reads nothing beyond `file`.
std::span<const std::uint8_t> FindSegment(
    std::span<const std::uint8_t> file,
    const std::function<bool(std::uint8_t kind, std::span<const std::uint8_t> contents)>& isWanted);

/// The size that the header of a baseline or progressive JPEG states. Nothing if `file` is another file,
/// or too short a beginning.
std::optional<PictureSize> ReadJpegSize(std::span<const std::uint8_t> file);
