#include "tools/trace/recording/recorded_lines.h"

#include "tools/trace/lines/line_format.h"
#include "tools/trace/recording/json_record.h"

#include <charconv>
#include <optional>
#include <string>
#include <utility>

namespace kestraboot::tools
{
namespace
{

constexpr std::string_view kDayBegin = "-- ";
constexpr std::size_t kClockLength = 12;
constexpr std::size_t kNameColumn = 14;
constexpr std::size_t kNameLength = 18;
constexpr std::string_view kGap = "  ";
constexpr std::string_view kUnknownName = "?";

std::string_view WithoutBlanksAtTheEnd(std::string_view text) noexcept
{
    return text.substr(0, text.find_last_not_of(' ') + 1); // npos + 1 is 0
}

template <typename Number>
std::optional<Number> WholeNumber(std::string_view text)
{
    Number number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number)
                                                                    : std::nullopt;
}

/// Up to the next `separator`, which is removed too.
std::string_view TakeUpTo(std::string_view& text, char separator)
{
    const std::size_t end = text.find(separator);
    const std::string_view taken = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return taken;
}

struct Writer {
    std::uint32_t process = 0;
    std::string name = std::string(kUnknownName);
};

/// "[556] " or "[556]" before the line itself.
bool TakeBracketedProcess(std::string_view& text, Writer& writer)
{
    const std::size_t end = text.find(']');
    if (!text.starts_with('[') || end == std::string_view::npos) {
        return false;
    }
    const std::optional<std::uint32_t> process = WholeNumber<std::uint32_t>(text.substr(1, end - 1));
    if (!process) {
        return false;
    }
    writer.process = *process;
    text.remove_prefix(end + 1);
    if (text.starts_with(' ')) {
        text.remove_prefix(1);
    }
    return true;
}

/// A column of its own: "556", "kestraboot.exe", "kestraboot.exe [556]" or "kestraboot.exe (556)".
bool ReadProcessColumn(std::string_view column, Writer& writer)
{
    if (const auto process = WholeNumber<std::uint32_t>(column)) {
        writer.process = *process;
        return true;
    }
    std::string_view name = column;
    const std::size_t bracket = column.find_last_of("[(");
    if (bracket != std::string_view::npos && (column.ends_with(']') || column.ends_with(')'))) {
        const std::string_view inside = column.substr(bracket + 1, column.size() - bracket - 2);
        const auto process = WholeNumber<std::uint32_t>(inside);
        if (!process) {
            return false;
        }
        writer.process = *process;
        name = WithoutBlanksAtTheEnd(column.substr(0, bracket));
    } else if (!column.ends_with(".exe") && !column.ends_with(".EXE")) {
        return false;
    }
    writer.name = name;
    return true;
}

/// Up to two columns, number and name, may precede the line.
Writer TakeWriter(std::string_view& text)
{
    Writer writer;
    if (TakeBracketedProcess(text, writer)) {
        return writer;
    }
    for (int column = 0; column < 2 && text.find('\t') != std::string_view::npos; ++column) {
        std::string_view rest = text;
        if (!ReadProcessColumn(TakeUpTo(rest, '\t'), writer)) {
            break;
        }
        text = rest;
    }
    return writer;
}

/// "  (7 lines lost: they came faster than they could be shown)"
std::optional<std::uint64_t> LossIn(std::string_view rest)
{
    constexpr std::string_view kBegin = "  (";
    if (!rest.starts_with(kBegin)) {
        return std::nullopt;
    }
    rest.remove_prefix(kBegin.size());
    const std::optional<std::uint64_t> lines = WholeNumber<std::uint64_t>(TakeUpTo(rest, ' '));
    return rest.starts_with("lines lost: ") ? lines : std::nullopt;
}

} // namespace

RecordedLine RecordedLines::Read(std::string_view line)
{
    if (line.starts_with('{')) {
        return ReadJsonRecord(line);
    }
    if (line.starts_with(kDayBegin)) {
        const std::optional<std::int64_t> said = ParseDay(line.substr(kDayBegin.size()));
        if (!said) {
            return NotRecorded{};
        }
        day = *said;
        lastOfDay = 0;
        return RecordedDay{};
    }
    return line.find('\t') == std::string_view::npos ? ReadOwnText(line) : ReadForeign(line);
}

TimeStamp RecordedLines::At(const ClockColumn& clock)
{
    if (clock.day) {
        day = *clock.day;
    } else if (clock.millisecond + kMillisecondsPerDay / 2 < lastOfDay) {
        ++day; // past midnight
    }
    lastOfDay = clock.millisecond;
    const std::int64_t local = day * kMillisecondsPerDay + clock.millisecond;
    if (local / kMillisecondsPerMinute !=
        minute) { // time zones change on whole minutes, and a query is slow
        minute = local / kMillisecondsPerMinute;
        offsetOfMinute = offsetMinutes(local);
    }
    const std::int64_t utc = local - offsetOfMinute * kMillisecondsPerMinute;
    return {utc, offsetOfMinute, utc};
}

RecordedLine RecordedLines::ReadOwnText(std::string_view line)
{
    const std::optional<ClockColumn> clock = ParseClockColumn(line.substr(0, kClockLength));
    if (line.size() < kClockLength || !clock) {
        return NotRecorded{};
    }
    if (const auto lost = LossIn(line.substr(kClockLength))) {
        return RecordedLoss{At(*clock), *lost};
    }
    const auto gapAt = [&](std::size_t column) {
        return line.size() >= column + kGap.size() && line.substr(column, kGap.size()) == kGap;
    };
    if (!gapAt(kClockLength) || !gapAt(kNameColumn + kNameLength)) {
        return NotRecorded{};
    }
    std::string_view rest = line.substr(kNameColumn + kNameLength + kGap.size());
    const std::size_t number = rest.find_first_not_of(' ');
    rest.remove_prefix(number == std::string_view::npos ? rest.size() : number);
    const std::size_t end = rest.find(kGap);
    const std::optional<std::uint32_t> process = WholeNumber<std::uint32_t>(rest.substr(0, end));
    if (end == std::string_view::npos || !process) {
        return NotRecorded{};
    }
    const std::string_view name = WithoutBlanksAtTheEnd(line.substr(kNameColumn, kNameLength));
    return SeenLine{At(*clock), *process, std::string(name),
                    std::string(rest.substr(end + kGap.size()))};
}

RecordedLine RecordedLines::ReadForeign(std::string_view line)
{
    std::string_view rest = line;
    std::string_view column = TakeUpTo(rest, '\t');
    if (WholeNumber<std::uint64_t>(column) && rest.find('\t') != std::string_view::npos) {
        column = TakeUpTo(rest, '\t'); // after the line's number
    }
    const std::optional<ClockColumn> clock = ParseClockColumn(column);
    if (!clock) {
        return NotRecorded{};
    }
    Writer writer = TakeWriter(rest);
    return SeenLine{At(*clock), writer.process, std::move(writer.name), std::string(rest)};
}

} // namespace kestraboot::tools
