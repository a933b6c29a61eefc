// A program or library file, looked at as data: nothing of it is loaded, and no code of it runs.
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
    // Of 64-bit files only; another one is of no use to anybody here.
    std::vector<std::string> exports;    ///< by name
    std::vector<std::uint32_t> ordinals; ///< of the exports, those without a name included
    std::vector<std::string> needs;      ///< the libraries without which it cannot be loaded
};

struct PeReading {
    std::optional<PeImage> image;
    const wchar_t* fault = L""; ///< why there is none
};

/// Reads nothing outside `file`, whatever it holds.
[[nodiscard]] PeReading ReadPe(std::span<const std::uint8_t> file);

[[nodiscard]] bool HasExport(const PeImage& image, std::string_view name);

/// What the machine type is called.
[[nodiscard]] std::wstring MachineName(std::uint16_t machine);

} // namespace kestraboot::tools
