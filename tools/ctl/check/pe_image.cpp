// The layout is that of Microsoft's PE format: a DOS header points to the PE header. After it come
// the sections, which map addresses (relative to the loaded image) to places in the file, and the
// directories, of which the first lists the exports and the second the imports.
#include "tools/ctl/check/pe_image.h"

#include <algorithm>
#include <cstring>

namespace kestraboot::tools
{
namespace
{

constexpr const wchar_t* kNoProgram = L"is no program file";
constexpr const wchar_t* kCutOff = L"is cut off in the middle, or damaged";

constexpr std::uint16_t kDosSignature = 0x5A4D;    // "MZ"
constexpr std::uint32_t kPeSignature = 0x00004550; // "PE", 0, 0
constexpr std::uint16_t kMagic64Bit = 0x20B;
constexpr std::uint16_t kIsLibrary = 0x2000;
constexpr std::size_t kLongestName = 512;
constexpr std::uint32_t kMostExports = 0x10000; // an ordinal has 16 bits
constexpr std::uint32_t kMostImports = 4096;

/// Thrown and caught in this file, at an access outside the PE file's bytes.
struct CutOff {
};

struct Section {
    std::uint32_t address;
    std::uint32_t size;
    std::uint32_t offset;
};

class Reader
{
public:
    explicit Reader(std::span<const std::uint8_t> contents) : file(contents) {}

    template <typename Number>
    [[nodiscard]] Number At(std::uint64_t offset) const
    {
        if (offset > file.size() || sizeof(Number) > file.size() - offset) {
            throw CutOff();
        }
        Number number = {};
        std::memcpy(&number, file.data() + offset, sizeof number);
        return number;
    }

    /// The place of an address in the file.
    [[nodiscard]] std::uint64_t Offset(std::uint32_t address) const
    {
        for (const Section& section : sections) {
            if (address >= section.address && address - section.address < section.size) {
                return std::uint64_t{section.offset} + (address - section.address);
            }
        }
        throw CutOff();
    }

    [[nodiscard]] std::string Name(std::uint32_t address) const
    {
        const std::uint64_t offset = Offset(address);
        std::string name;
        while (const auto character = At<std::uint8_t>(offset + name.size())) {
            if (name.size() == kLongestName) {
                throw CutOff();
            }
            name += static_cast<char>(character);
        }
        return name;
    }

    void ReadSections(std::uint64_t offset, unsigned count)
    {
        for (; count > 0; --count, offset += 40) {
            const Section section = {At<std::uint32_t>(offset + 12), At<std::uint32_t>(offset + 16),
                                     At<std::uint32_t>(offset + 20)};
            if (section.size > 0 && std::uint64_t{section.offset} + section.size > file.size()) {
                throw CutOff();
            }
            sections.push_back(section);
        }
    }

private:
    std::span<const std::uint8_t> file;
    std::vector<Section> sections;
};

void ReadExports(const Reader& reader, std::uint32_t address, PeImage& image)
{
    const std::uint64_t directory = reader.Offset(address);
    const auto firstOrdinal = reader.At<std::uint32_t>(directory + 16);
    const auto functions = reader.At<std::uint32_t>(directory + 20);
    const auto names = reader.At<std::uint32_t>(directory + 24);
    if (functions > kMostExports || names > kMostExports) {
        throw CutOff();
    }
    const auto functionTable = reader.At<std::uint32_t>(directory + 28);
    for (std::uint32_t i = 0; i < functions; ++i) {
        if (reader.At<std::uint32_t>(reader.Offset(functionTable) + std::size_t{4} * i) != 0) {
            image.ordinals.push_back(firstOrdinal + i);
        }
    }
    const auto nameTable = reader.At<std::uint32_t>(directory + 32);
    for (std::uint32_t i = 0; i < names; ++i) {
        image.exports.push_back(
            reader.Name(reader.At<std::uint32_t>(reader.Offset(nameTable) + std::size_t{4} * i)));
    }
}

void ReadImports(const Reader& reader, std::uint32_t address, PeImage& image)
{
    for (std::uint64_t entry = reader.Offset(address);; entry += 20) {
        const auto name = reader.At<std::uint32_t>(entry + 12);
        if (name == 0) {
            return;
        }
        if (image.needs.size() == kMostImports) {
            throw CutOff();
        }
        image.needs.push_back(reader.Name(name));
    }
}

PeImage ReadImage(std::span<const std::uint8_t> file, std::uint64_t header)
{
    Reader reader(file);
    PeImage image;
    image.machine = reader.At<std::uint16_t>(header + 4);
    const auto sections = reader.At<std::uint16_t>(header + 6);
    const auto optionalSize = reader.At<std::uint16_t>(header + 20);
    image.isLibrary = (reader.At<std::uint16_t>(header + 22) & kIsLibrary) != 0;
    const std::uint64_t optional = header + 24;
    reader.ReadSections(optional + optionalSize, sections);
    if (image.machine != kMachine64Bit) {
        return image;
    }
    if (reader.At<std::uint16_t>(optional) != kMagic64Bit) {
        throw CutOff();
    }
    const auto directories = reader.At<std::uint32_t>(optional + 108);
    const auto exports = directories > 0 ? reader.At<std::uint32_t>(optional + 112) : 0;
    const auto imports = directories > 1 ? reader.At<std::uint32_t>(optional + 120) : 0;
    if (exports != 0) {
        ReadExports(reader, exports, image);
    }
    if (imports != 0) {
        ReadImports(reader, imports, image);
    }
    return image;
}

} // namespace

PeReading ReadPe(std::span<const std::uint8_t> file)
{
    try {
        const Reader reader(file);
        if (file.size() < 2 || reader.At<std::uint16_t>(0) != kDosSignature) {
            return {std::nullopt, kNoProgram};
        }
        const auto header = reader.At<std::uint32_t>(0x3C);
        if (reader.At<std::uint32_t>(header) != kPeSignature) {
            return {std::nullopt, kNoProgram};
        }
        return {ReadImage(file, header), L""};
    } catch (const CutOff&) {
        return {std::nullopt, kCutOff};
    }
}

bool HasExport(const PeImage& image, std::string_view name)
{
    return std::ranges::find(image.exports, name) != image.exports.end();
}

std::wstring MachineName(std::uint16_t machine)
{
    switch (machine) {
    case kMachine64Bit:
        return L"64-bit";
    case kMachine32Bit:
        return L"32-bit";
    case 0xAA64:
        return L"64-bit for ARM processors";
    default:
        return L"of machine type " + std::to_wstring(machine);
    }
}

} // namespace kestraboot::tools
