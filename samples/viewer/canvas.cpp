#include "canvas.h"

#include <utility>

namespace
{

/// The source of the pixel at (x, y) of the turned picture.
std::pair<unsigned, unsigned> Origin(const Pixels& source, unsigned orientation, unsigned x, unsigned y)
{
    const unsigned right = source.width - 1;
    const unsigned bottom = source.height - 1;
    switch (orientation) {
    case 2:
        return {right - x, y};
    case 3:
        return {right - x, bottom - y};
    case 4:
        return {x, bottom - y};
    case 5:
        return {y, x};
    case 6:
        return {y, bottom - x};
    case 7:
        return {right - y, bottom - x};
    case 8:
        return {right - y, x};
    default:
        return {x, y};
    }
}

std::uint32_t Blend(std::uint32_t pixel, std::uint32_t background)
{
    const std::uint32_t through = 255 - (pixel >> 24);
    std::uint32_t blended = 0xFF000000;
    for (const unsigned shift : {0U, 8U, 16U}) {
        const std::uint32_t part =
            (pixel >> shift & 0xFF) + (background >> shift & 0xFF) * through / 255;
        blended |= (part > 255 ? 255 : part) << shift;
    }
    return blended;
}

} // namespace

Pixels Turn(const Pixels& source, unsigned orientation)
{
    const bool swaps = orientation >= 5;
    Pixels turned = {swaps ? source.height : source.width, swaps ? source.width : source.height, {}};
    turned.values.reserve(source.values.size());
    for (unsigned y = 0; y < turned.height; ++y) {
        for (unsigned x = 0; x < turned.width; ++x) {
            const auto [fromX, fromY] = Origin(source, orientation, x, y);
            turned.values.push_back(source.values[std::size_t{fromY} * source.width + fromX]);
        }
    }
    return turned;
}

Pixels PutOnCanvas(const Pixels& source, unsigned width, unsigned height, std::uint32_t background)
{
    Pixels canvas = {width, height, {}};
    canvas.values.assign(std::size_t{width} * height, 0xFF000000 | background);
    const unsigned left = (width - source.width) / 2;
    const unsigned top = (height - source.height) / 2;
    for (unsigned y = 0; y < source.height; ++y) {
        for (unsigned x = 0; x < source.width; ++x) {
            canvas.values[std::size_t{top + y} * width + left + x] =
                Blend(source.values[std::size_t{y} * source.width + x], background);
        }
    }
    return canvas;
}
