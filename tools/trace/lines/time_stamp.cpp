#include "tools/trace/lines/time_stamp.h"

#include <chrono>
#include <cstdio>

namespace kestraboot::tools
{
namespace
{

struct LocalTime {
    std::int64_t day;         ///< since 1970
    std::int64_t millisecond; ///< since midnight
};

LocalTime Local(const TimeStamp& time) noexcept
{
    const std::int64_t local = time.utcMilliseconds + time.offsetMinutes * kMillisecondsPerMinute;
    return {local / kMillisecondsPerDay, local % kMillisecondsPerDay};
}

template <typename... Numbers>
std::string Formatted(const char* format, Numbers... numbers)
{
    char text[64] = {};
    std::snprintf(text, sizeof text, format, numbers...);
    return text;
}

} // namespace

std::string ClockText(const TimeStamp& time)
{
    const auto left = static_cast<int>(Local(time).millisecond);
    return Formatted("%02d:%02d:%02d.%03d", left / 3'600'000, left / 60'000 % 60, left / 1000 % 60,
                     left % 1000);
}

std::string DayText(const TimeStamp& time)
{
    const std::chrono::year_month_day day(
        std::chrono::sys_days(std::chrono::days(static_cast<int>(Local(time).day))));
    return Formatted("%04d-%02u-%02u", static_cast<int>(day.year()), static_cast<unsigned>(day.month()),
                     static_cast<unsigned>(day.day()));
}

std::string IsoText(const TimeStamp& time)
{
    const int offset = time.offsetMinutes < 0 ? -time.offsetMinutes : time.offsetMinutes;
    return DayText(time) + 'T' + ClockText(time) + (time.offsetMinutes < 0 ? '-' : '+') +
           Formatted("%02d:%02d", offset / 60, offset % 60);
}

std::string DurationText(std::int64_t milliseconds)
{
    return Formatted("%lld.%03d s", static_cast<long long>(milliseconds / 1000),
                     static_cast<int>(milliseconds % 1000));
}

} // namespace kestraboot::tools
