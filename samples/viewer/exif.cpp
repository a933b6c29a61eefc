#include "exif.h"

#include <algorithm>
#include <optional>

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

    [[nodiscard]] std::string Date(std::size_t table, std::uint32_t tag) const
    {
        constexpr std::size_t kLength = 19; // "2026:11:21 13:26:59"
        const std::optional<std::size_t> value = Find(table, tag);
        const std::size_t at = value ? Number(*value, 4) : bytes.size();
        if (at >= bytes.size() || bytes.size() - at < kLength) {
            return {};
        }
        std::string date(kLength, '\0');
        std::ranges::copy(bytes.subspan(at, kLength), date.begin());
        return date;
    }

private:
    std::span<const std::uint8_t> bytes;
    bool littleEndian;
};

/// The TIFF structure in a JPEG's segments (FF E1, length, "Exif", 0, 0), or a file that is one itself.
std::span<const std::uint8_t> FindTiff(std::span<const std::uint8_t> file)
{
    if (file.size() > 4 && (file[0] == 'I' || file[0] == 'M') && file[0] == file[1]) {
        return file;
    }
    std::size_t at = 2;
    while (file.size() > at + 10 && file[at] == 0xFF && file[at + 1] != 0xDA) {
        const std::size_t length = std::size_t{file[at + 2]} << 8 | file[at + 3];
        if (file[at + 1] == 0xE1 &&
            std::ranges::equal(file.subspan(at + 4, 4), std::string_view("Exif"))) {
            const std::size_t begin = at + 10;
            return file.subspan(begin, std::min(length < 8 ? 0 : length - 8, file.size() - begin));
        }
        at += 2 + length;
    }
    return {};
}

} // namespace

Exif ReadExif(std::span<const std::uint8_t> file)
{
    constexpr std::uint32_t kOrientation = 0x0112;
    constexpr std::uint32_t kChanged = 0x0132;
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
    return exif;
}
