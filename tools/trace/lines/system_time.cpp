#include "tools/trace/lines/system_time.h"

#include <windows.h>
#include <chrono>

namespace kestraboot::tools
{
namespace
{

constexpr std::int64_t kTicksPerMillisecond = 10'000;
constexpr std::int64_t kTicksPerMinute = 60'000 * kTicksPerMillisecond;
constexpr std::int64_t kMillisecondsTo1970 = 11'644'473'600'000; // since 1601

std::int64_t Ticks(const FILETIME& time) noexcept
{
    return static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
}

/// Of local time from that time, by the rules of the time zone for that day.
int OffsetMinutes(FILETIME utc) noexcept
{
    FILETIME local = {};
    SYSTEMTIME utcParts = {};
    SYSTEMTIME localParts = {};
    const bool known = ::FileTimeToSystemTime(&utc, &utcParts) &&
                       ::SystemTimeToTzSpecificLocalTime(nullptr, &utcParts, &localParts) &&
                       ::SystemTimeToFileTime(&localParts, &local) &&
                       ::SystemTimeToFileTime(&utcParts, &utc); // without what the parts cannot hold
    return known ? static_cast<int>((Ticks(local) - Ticks(utc)) / kTicksPerMinute) : 0;
}

} // namespace

std::int64_t UpMilliseconds()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

TimeStamp Now()
{
    FILETIME utc = {};
    ::GetSystemTimeAsFileTime(&utc);
    return {Ticks(utc) / kTicksPerMillisecond - kMillisecondsTo1970, OffsetMinutes(utc),
            UpMilliseconds()};
}

} // namespace kestraboot::tools
