#pragma once

#include <cstdint>
#include <string>

namespace kestraboot
{

/// The kind of device as a device plugin codes it; the host gets the word.
enum class DeviceKind : std::uint32_t {
    Unknown = 0,
    Camera = 1,
    Mobile = 2,
    Scanner = 3,
    Video = 4,
    Audio = 5,
    Volume = 6,
    Archive = 7,
};

/// The word for a kind; "unknown" for every number that is none of the above.
[[nodiscard]] std::wstring DeviceKindWord(DeviceKind kind);

} // namespace kestraboot
