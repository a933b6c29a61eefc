#include "exif.h"

#include "jpeg_header.h"

#include <algorithm>
#include <optional>
#include <string_view>

namespace
{

/// A TIFF structure: tables of entries of 12 bytes (tag, type, count, value or where the value is).
class Tiff
{
public:
    explicit Tiff(std::span<const std::uint8_t> all)
        : bytes(all), littleEndian(!all.empty() && all.front() == 'I')
    {
    }

    /// Beyond the end everything reads as zero.
    [[nodiscard]] std::uint32_t Number(std::size_t at, unsigned size) const
    {
        std::uint32_t number = 0;
        for (unsigned i = 0; i < size && at < bytes.size() && size <= bytes.size() - at; ++i) {
            number = number << 8 | bytes[at + (littleEndian ? size - 1 - i : i)];
        }
        return number;
    }

    /// The position of a tag's value in the entry of a table; nothing if the table has no such tag.
    [[nodiscard]] std::optional<std::size_t> Find(std::size_t table, std::uint32_t tag) const
    {
        const std::uint32_t count = table == 0 ? 0 : Number(table, 2);
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::size_t entry = std::size_t{12} * i + table + 2;
            if (Number(entry, 2) == tag) {
                return entry + 8;
            }
        }
        return std::nullopt;
    }

    /// The table that follows a table; zero if it is the last one.
    [[nodiscard]] std::size_t Next(std::size_t table) const
    {
        return table == 0 ? 0 : Number(table + 2 + std::size_t{12} * Number(table, 2), 4);
    }

    /// Empty unless all of it is there.
    [[nodiscard]] std::span<const std::uint8_t> Part(std::size_t at, std::size_t length) const
    {
        const bool isInside = at <= bytes.size() && length <= bytes.size() - at;
        return isInside ? bytes.subspan(at, length) : std::span<const std::uint8_t>();
    }

    [[nodiscard]] std::string Date(std::size_t table, std::uint32_t tag) const
    {
        constexpr std::size_t kLength = 19; // "2026:11:21 13:26:59"
        const std::optional<std::size_t> value = Find(table, tag);
        const auto date = Part(value ? Number(*value, 4) : bytes.size(), kLength);
        return {date.begin(), date.end()};
    }

private:
    std::span<const std::uint8_t> bytes;
    bool littleEndian;
};

/// The TIFF structure in a JPEG's segment ("Exif", 0, 0, TIFF), or a file that is one itself.
std::span<const std::uint8_t> FindTiff(std::span<const std::uint8_t> file)
{
    constexpr std::uint8_t kApplication = 0xE1;
    constexpr std::size_t kMark = 6;
    if (file.size() > 4 && (file[0] == 'I' || file[0] == 'M') && file[0] == file[1]) {
        return file;
    }
    const auto segment =
        FindSegment(file, [](std::uint8_t kind, std::span<const std::uint8_t> contents) {
            return kind == kApplication && contents.size() >= kMark &&
                   std::ranges::equal(contents.first(4), std::string_view("Exif"));
        });
    return segment.empty() ? segment : segment.subspan(kMark);
}

} // namespace

Exif ReadExif(std::span<const std::uint8_t> file)
{
    constexpr std::uint32_t kOrientation = 0x0112;
    constexpr std::uint32_t kChanged = 0x0132;
    constexpr std::uint32_t kThumbnail = 0x0201;
    constexpr std::uint32_t kThumbnailLength = 0x0202;
    constexpr std::uint32_t kCameraTable = 0x8769;
    constexpr std::uint32_t kTaken = 0x9003;

    const Tiff tiff(FindTiff(file));
    const std::size_t table = tiff.Number(4, 4);
    Exif exif;
    if (const auto value = tiff.Find(table, kOrientation)) {
        exif.orientation = std::clamp(tiff.Number(*value, 2), 1U, 8U);
    }
    if (const auto value = tiff.Find(table, kCameraTable)) {
        exif.taken = tiff.Date(tiff.Number(*value, 4), kTaken);
    }
    if (exif.taken.empty()) {
        exif.taken = tiff.Date(table, kChanged);
    }
    const std::size_t second = tiff.Next(table); // of the thumbnail
    const auto thumbnail = tiff.Find(second, kThumbnail);
    const auto length = tiff.Find(second, kThumbnailLength);
    if (thumbnail && length) {
        exif.thumbnail = tiff.Part(tiff.Number(*thumbnail, 4), tiff.Number(*length, 4));
    }
    return exif;
}
