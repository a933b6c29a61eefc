// The time in a column of a log.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kestraboot::tools
{

struct ClockColumn {
    std::optional<std::int64_t> day; ///< since 1970, if the column has it
    std::int64_t millisecond = 0;    ///< since midnight
};

/// "2026-11-21": days since 1970.
[[nodiscard]] std::optional<std::int64_t> ParseDay(std::string_view text);

/// "13:26:59.994", "1:26:59 PM", either of them after a day and a blank, or "12.345" seconds. A
/// comma counts as a point.
[[nodiscard]] std::optional<ClockColumn> ParseClockColumn(std::string_view text);

} // namespace kestraboot::tools
