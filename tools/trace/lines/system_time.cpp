#include "tools/trace/lines/system_time.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace kestraboot::tools
{
namespace
{

constexpr std::int64_t kTicksPerMillisecond = 10'000;
constexpr std::int64_t kTicksPerMinute = 60'000 * kTicksPerMillisecond;
constexpr std::int64_t kLongestTick = 32; // milliseconds: Windows' clock advances in steps of up to 16
constexpr std::int64_t kMillisecondsTo1970 = 11'644'473'600'000; // since 1601

std::int64_t Ticks(const FILETIME& time) noexcept
{
    return static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
}

std::int64_t MillisecondsOf(const FILETIME& time) noexcept
{
    return Ticks(time) / kTicksPerMillisecond - kMillisecondsTo1970;
}

FILETIME FileTimeOf(std::int64_t milliseconds) noexcept
{
    const auto ticks =
        static_cast<std::uint64_t>((milliseconds + kMillisecondsTo1970) * kTicksPerMillisecond);
    return {static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32)};
}

/// Of local time from that time, by the rules of the time zone for that day; 0 if Windows does not know
/// them, as standard error then says.
int OffsetMinutes(FILETIME utc) noexcept
{
    FILETIME local = {};
    SYSTEMTIME utcParts = {};
    SYSTEMTIME localParts = {};
    const bool known = ::FileTimeToSystemTime(&utc, &utcParts) &&
                       ::SystemTimeToTzSpecificLocalTime(nullptr, &utcParts, &localParts) &&
                       ::SystemTimeToFileTime(&localParts, &local) &&
                       ::SystemTimeToFileTime(&utcParts, &utc); // without the part that they cannot hold
    if (!known) {
        std::fputs("kestratrace: Windows does not report the offset of local time from UTC: it is taken "
                   "as 0\n",
                   stderr);
        return 0;
    }
    return static_cast<int>((Ticks(local) - Ticks(utc)) / kTicksPerMinute);
}

} // namespace

std::int64_t UpMilliseconds()
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

Moment PairedClock::Now()
{
    FILETIME utc = {};
    ::GetSystemTimeAsFileTime(&utc);
    const std::int64_t up = UpMilliseconds();
    const std::int64_t now = MillisecondsOf(utc) - up;
    if (std::abs(now - between) > kLongestTick) {
        between = now; // at the start, or if the clock was set
    }
    return {up + between, up};
}

int OffsetMinutesAtUtc(std::int64_t utcMilliseconds)
{
    return OffsetMinutes(FileTimeOf(utcMilliseconds));
}

int OffsetMinutesAt(std::int64_t localMilliseconds)
{
    // Off by one change of the clocks at most. A second conversion is exact, except for the hour
    // that occurs twice.
    const int about = OffsetMinutesAtUtc(localMilliseconds);
    return OffsetMinutesAtUtc(localMilliseconds - about * kMillisecondsPerMinute);
}

std::int64_t LocalDay(const FILETIME& utc) noexcept
{
    return (MillisecondsOf(utc) + OffsetMinutes(utc) * kMillisecondsPerMinute) / kMillisecondsPerDay;
}

} // namespace kestraboot::tools
