// The time of a line.
#pragma once

#include <cstdint>
#include <string>

namespace kestraboot::tools
{

inline constexpr std::int64_t kMillisecondsPerMinute = 60'000;
inline constexpr std::int64_t kMillisecondsPerDay = 86'400'000;

struct TimeStamp {
    std::int64_t utcMilliseconds = 0; ///< since 1970
    int offsetMinutes = 0;            ///< of local time from UTC
    std::int64_t upMilliseconds =
        0; ///< of a clock that cannot be set: differences are taken from this one
};

/// Local time, "12:33:47.123".
[[nodiscard]] std::string ClockText(const TimeStamp& time);

/// The local day, "2026-11-21".
[[nodiscard]] std::string DayText(const TimeStamp& time);

/// ISO 8601, "2026-11-21T12:33:47.123+01:00".
[[nodiscard]] std::string IsoText(const TimeStamp& time);

/// "0.120 s".
[[nodiscard]] std::string DurationText(std::int64_t milliseconds);

} // namespace kestraboot::tools
