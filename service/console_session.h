#pragma once

#include <cstdint>

namespace kestraboot
{

/// Whether a process runs in the session that is attached to the physical console. False if this
/// cannot be determined.
[[nodiscard]] bool IsProcessInActiveConsoleSession(std::uint32_t processId) noexcept;

} // namespace kestraboot
