// Reads the lines of a recording: kestratrace's own, text or JSON, or another viewer's.
//
//   13:26:59.994  kestraboot.exe         556  <***DeviceConnect***><VolumeTracker><DEVICE ARRIVED>
//   {"type":"line","schema":1,"time":"2026-11-21T13:26:59.994+00:00","process":556,...}
//   00000012<TAB>1:26:59.994 PM<TAB>[556] <***DeviceConnect***><VolumeTracker><DEVICE ARRIVED>
//
// Text has the time of day alone; kestratrace writes the day above it. If there is no day, the day
// of the file counts, and a clock that goes back by half a day or more begins the next day.
#pragma once

#include "tools/trace/lines/seen_line.h"
#include "tools/trace/recording/clock_column.h"

#include <cstdint>
#include <string_view>
#include <variant>

namespace kestraboot::tools
{

struct RecordedLoss {
    TimeStamp time;
    std::uint64_t lines = 0;
};

struct RecordedDay {
}; ///< names the day
struct NotRecorded {
}; ///< no viewer's line, or the line of an arrival

using RecordedLine = std::variant<NotRecorded, RecordedDay, RecordedLoss, SeenLine>;

class RecordedLines
{
public:
    /// `fileDay` in days since 1970, as `offset` shows it: the minutes of local time from UTC for a
    /// local time in milliseconds since 1970.
    RecordedLines(std::int64_t fileDay, int (*offset)(std::int64_t localMilliseconds))
        : day(fileDay), offsetMinutes(offset)
    {
    }

    [[nodiscard]] RecordedLine Read(std::string_view line);

private:
    [[nodiscard]] RecordedLine ReadOwnText(std::string_view line);
    [[nodiscard]] RecordedLine ReadForeign(std::string_view line);
    [[nodiscard]] TimeStamp At(const ClockColumn& clock);

    std::int64_t day;
    std::int64_t lastOfDay = 0; ///< milliseconds since midnight
    std::int64_t minute = -1;   ///< local, since 1970: the one whose offset is known
    int offsetOfMinute = 0;
    int (*const offsetMinutes)(std::int64_t);
};

} // namespace kestraboot::tools
