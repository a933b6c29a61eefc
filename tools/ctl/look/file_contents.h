#pragma once

#include "tools/ctl/check/pe_image.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestraboot::tools
{

/// Larger files are not read: no plugin is that large.
inline constexpr std::uint64_t kLargestFile = 64ULL << 20;

struct FileContents {
    std::optional<std::vector<std::uint8_t>> bytes;
    const wchar_t* fault = L""; ///< the reason if there are none
};

[[nodiscard]] FileContents ReadContents(const std::wstring& path);

/// The file as a program or library.
[[nodiscard]] PeReading ReadPeFile(const std::wstring& path);

} // namespace kestraboot::tools
