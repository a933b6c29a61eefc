// Reads a program or library file as data: nothing of it is loaded, and none of its code runs.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestraboot::tools
{

inline constexpr std::uint16_t kMachine64Bit = 0x8664;
inline constexpr std::uint16_t kMachine32Bit = 0x014C;

struct PeImage {
    std::uint16_t machine = 0;
    bool isLibrary = false;
    // Of 64-bit files only; no other file is of use here.
    std::vector<std::string> exports;    ///< by name
    std::vector<std::uint32_t> ordinals; ///< the number of exports, those without a name included
    std::vector<std::string> needs;      ///< the imported libraries, without which it cannot be loaded
};

struct PeReading {
    std::optional<PeImage> image;
    const wchar_t* fault = L""; ///< the reason if there is none
};

/// Reads nothing outside `file`, whatever its contents.
[[nodiscard]] PeReading ReadPe(std::span<const std::uint8_t> file);

[[nodiscard]] bool HasExport(const PeImage& image, std::string_view name);

/// The name of the machine type.
[[nodiscard]] std::wstring MachineName(std::uint16_t machine);

} // namespace kestraboot::tools
