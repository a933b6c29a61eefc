#pragma once

#include "tools/trace/lines/time_stamp.h"

#include <windows.h>

namespace kestraboot::tools
{

/// Of a clock that cannot be set.
[[nodiscard]] std::int64_t UpMilliseconds();

struct Moment {
    std::int64_t utcMilliseconds = 0; ///< since 1970
    std::int64_t upMilliseconds = 0;
};

/// Both clocks at one moment. They advance together to the millisecond, unless somebody sets the
/// one. So times that are recorded in UTC alone give the same differences when they are read back.
class PairedClock
{
public:
    [[nodiscard]] Moment Now();

private:
    std::int64_t between = 0;
};

/// Of local time from UTC at that time, by the rules of this machine's time zone for that day.
[[nodiscard]] int OffsetMinutesAtUtc(std::int64_t utcMilliseconds);

/// The same at a local time.
[[nodiscard]] int OffsetMinutesAt(std::int64_t localMilliseconds);

/// The local day, since 1970.
[[nodiscard]] std::int64_t LocalDay(const FILETIME& utc) noexcept;

} // namespace kestraboot::tools
