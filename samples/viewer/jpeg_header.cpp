#include "jpeg_header.h"

#include <algorithm>

// A segment is FF, its kind, the length of the rest in two bytes that count themselves, and its
// contents.
std::span<const std::uint8_t> FindSegment(
    std::span<const std::uint8_t> file,
    const std::function<bool(std::uint8_t kind, std::span<const std::uint8_t> contents)>& isWanted)
{
    constexpr std::uint8_t kPictureData = 0xDA;
    std::size_t at = 2;
    while (file.size() > at + 4 && file[at] == 0xFF && file[at + 1] != kPictureData) {
        const std::size_t length = std::size_t{file[at + 2]} << 8 | file[at + 3];
        const std::size_t begin = at + 4;
        const auto contents =
            file.subspan(begin, std::min(length < 2 ? 0 : length - 2, file.size() - begin));
        if (isWanted(file[at + 1], contents)) {
            return contents;
        }
        at += 2 + length;
    }
    return {};
}

// The frame segment: bits in a sample, height and width in two bytes each, components.
std::optional<PictureSize> ReadJpegSize(std::span<const std::uint8_t> file)
{
    constexpr std::uint8_t kBaseline = 0xC0;
    constexpr std::uint8_t kProgressive = 0xC2;
    if (file.size() < 2 || file[0] != 0xFF || file[1] != 0xD8) {
        return std::nullopt;
    }
    const auto frame = FindSegment(file, [](std::uint8_t kind, std::span<const std::uint8_t> contents) {
        return kind >= kBaseline && kind <= kProgressive && contents.size() > 5;
    });
    if (frame.empty()) {
        return std::nullopt;
    }
    return PictureSize{static_cast<unsigned>(frame[3] << 8 | frame[4]),
                       static_cast<unsigned>(frame[1] << 8 | frame[2])};
}
