// The small picture of the contact sheet, as pixels.
#pragma once

#include <cstdint>
#include <vector>

/// Pixels row by row: blue, green, red and how opaque they are, a byte each; colours are multiplied by
/// that.
struct Pixels {
    unsigned width = 0;
    unsigned height = 0;
    std::vector<std::uint32_t> values;
};

/// Turned by an EXIF orientation (1 to 8).
Pixels Turn(const Pixels& source, unsigned orientation);

/// In the middle of a canvas of that size and colour (0xRRGGBB). `source` is no larger.
Pixels PutOnCanvas(const Pixels& source, unsigned width, unsigned height, std::uint32_t background);
