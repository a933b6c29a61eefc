#include "tools/trace/recording/clock_column.h"

#include "tools/trace/lines/time_stamp.h"

#include <chrono>

namespace kestraboot::tools
{
namespace
{

constexpr std::int64_t kMillisecondsPerSecond = 1000;
constexpr std::int64_t kMillisecondsPerHour = 60 * kMillisecondsPerMinute;
constexpr std::size_t kMostDigits = 9;

/// The number at the beginning of `text`, which it removes.
std::optional<std::int64_t> TakeNumber(std::string_view& text)
{
    std::size_t length = 0;
    std::int64_t number = 0;
    while (length < text.size() && text[length] >= '0' && text[length] <= '9') {
        number = number * 10 + (text[length] - '0');
        if (++length > kMostDigits) {
            return std::nullopt;
        }
    }
    text.remove_prefix(length);
    return length != 0 ? std::optional(number) : std::nullopt;
}

bool TakeOne(std::string_view& text, std::string_view characters)
{
    if (text.empty() || characters.find(text.front()) == std::string_view::npos) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

/// ".994"; 0 if there is none. Further digits are dropped.
std::optional<std::int64_t> TakeFraction(std::string_view& text)
{
    if (!TakeOne(text, ".,")) {
        return 0;
    }
    std::int64_t milliseconds = 0;
    std::int64_t scale = 100;
    bool any = false;
    while (!text.empty() && text.front() >= '0' && text.front() <= '9') {
        milliseconds += (text.front() - '0') * scale;
        scale /= 10;
        any = true;
        text.remove_prefix(1);
    }
    return any ? std::optional(milliseconds) : std::nullopt;
}

/// Removes " PM"; an hour that fits no clock is nothing.
std::optional<std::int64_t> HourByHalfDay(std::int64_t hour, std::string_view& text)
{
    const bool morning = text == " AM" || text == " am";
    if (!morning && text != " PM" && text != " pm") {
        return hour < 24 ? std::optional(hour) : std::nullopt;
    }
    text = {};
    if (hour < 1 || hour > 12) {
        return std::nullopt;
    }
    return hour % 12 + (morning ? 0 : 12);
}

} // namespace

std::optional<std::int64_t> ParseDay(std::string_view text)
{
    const std::optional<std::int64_t> year = TakeNumber(text);
    if (!year || *year > 9999 || !TakeOne(text, "-")) {
        return std::nullopt;
    }
    const std::optional<std::int64_t> month = TakeNumber(text);
    if (!month || !TakeOne(text, "-")) {
        return std::nullopt;
    }
    const std::optional<std::int64_t> day = TakeNumber(text);
    if (!day || !text.empty() || *month > 12 || *day > 31) {
        return std::nullopt;
    }
    const std::chrono::year_month_day date(std::chrono::year(static_cast<int>(*year)),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day)));
    return date.ok()
               ? std::optional<std::int64_t>(std::chrono::sys_days(date).time_since_epoch().count())
               : std::nullopt;
}

std::optional<ClockColumn> ParseClockColumn(std::string_view text)
{
    ClockColumn clock;
    constexpr std::size_t kDayLength = 10;
    if (text.size() > kDayLength && (text[kDayLength] == ' ' || text[kDayLength] == 'T')) {
        clock.day = ParseDay(text.substr(0, kDayLength));
        if (!clock.day) {
            return std::nullopt;
        }
        text.remove_prefix(kDayLength + 1);
    }
    const std::optional<std::int64_t> first = TakeNumber(text);
    if (!first) {
        return std::nullopt;
    }
    if (!TakeOne(text, ":")) { // seconds since an unknown start
        const bool pointed = !text.empty();
        const std::optional<std::int64_t> fraction = TakeFraction(text);
        if (!pointed || !fraction || !text.empty()) {
            return std::nullopt;
        }
        clock.millisecond = *first * kMillisecondsPerSecond + *fraction;
        return clock;
    }
    const std::optional<std::int64_t> minute = TakeNumber(text);
    const bool colon = minute && TakeOne(text, ":");
    const std::optional<std::int64_t> second = colon ? TakeNumber(text) : std::nullopt;
    const std::optional<std::int64_t> fraction = second ? TakeFraction(text) : std::nullopt;
    if (!fraction || *minute > 59 || *second > 59) {
        return std::nullopt;
    }
    const std::optional<std::int64_t> hour = HourByHalfDay(*first, text);
    if (!hour || !text.empty()) {
        return std::nullopt;
    }
    clock.millisecond = *hour * kMillisecondsPerHour + *minute * kMillisecondsPerMinute +
                        *second * kMillisecondsPerSecond + *fraction;
    return clock;
}

} // namespace kestraboot::tools
