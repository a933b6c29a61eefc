#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// A library file with headers, exports and imports as a linker writes them, without any code.
struct PeFile {
    std::uint16_t machine = 0x8664;
    bool library = true;
    std::vector<std::string> exports = {"FxPluginMain"};
    std::vector<std::string> needs = {"KERNEL32.dll"};
    std::string padding; ///< after everything else

    [[nodiscard]] std::string Bytes() const;
};

// The offsets in Bytes() of the parts that a test may damage.
inline constexpr std::size_t kPeHeaderAt = 64;
inline constexpr std::size_t kSectionHeaderAt = kPeHeaderAt + 24 + 240;
inline constexpr std::size_t kExportsEntryAt = kPeHeaderAt + 24 + 112;
inline constexpr std::size_t kImportsEntryAt = kExportsEntryAt + 8;
inline constexpr std::size_t kSectionAt = 0x200; ///< the export directory is at its beginning
inline constexpr std::uint32_t kSectionAddress = 0x1000;

/// Overwrites four bytes.
void PutNumber(std::string& bytes, std::size_t at, std::uint32_t number);

} // namespace kestraboot::tests
