#include "tools/trace/recording/json_record.h"

#include "tools/trace/lines/json_line.h"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <optional>
#include <string>

namespace kestraboot::tools
{
namespace
{

using nlohmann::json;

/// "2026-11-21T13:26:59.994+01:00"
std::optional<TimeStamp> ReadTime(const json& object)
{
    constexpr std::size_t kLocalLength = 23;
    constexpr std::size_t kWholeLength = 29;
    const auto found = object.find("time");
    if (found == object.end() || !found->is_string()) {
        return std::nullopt;
    }
    const auto& text = found->get_ref<const std::string&>();
    if (text.size() != kWholeLength) {
        return std::nullopt;
    }
    const std::optional<ClockColumn> clock =
        ParseClockColumn(std::string_view(text).substr(0, kLocalLength));
    const std::optional<ClockColumn> zone =
        ParseClockColumn(text.substr(kLocalLength + 1) + ":00"); // as hours and minutes
    const char sign = text[kLocalLength];
    if (!clock || !clock->day || !zone || (sign != '+' && sign != '-')) {
        return std::nullopt;
    }
    const std::int64_t minutes = zone->millisecond / kMillisecondsPerMinute * (sign == '-' ? -1 : 1);
    const std::int64_t utc =
        *clock->day * kMillisecondsPerDay + clock->millisecond - minutes * kMillisecondsPerMinute;
    return TimeStamp{utc, static_cast<int>(minutes), utc};
}

template <typename Value>
std::optional<Value> Member(const json& object, const char* name)
{
    const auto found = object.find(name);
    if constexpr (std::is_same_v<Value, std::string>) {
        return found != object.end() && found->is_string() ? std::optional(found->get<Value>())
                                                           : std::nullopt;
    } else {
        return found != object.end() && found->is_number_unsigned() ? std::optional(found->get<Value>())
                                                                    : std::nullopt;
    }
}

} // namespace

RecordedLine ReadJsonRecord(std::string_view text)
{
    const json object = json::parse(text, nullptr, false);
    if (!object.is_object() || Member<unsigned>(object, "schema").value_or(kLineSchema) != kLineSchema) {
        return NotRecorded{};
    }
    const std::optional<TimeStamp> time = ReadTime(object);
    const auto lost = Member<std::uint64_t>(object, "lost");
    if (time && lost) {
        return RecordedLoss{*time, *lost};
    }
    const auto process = Member<std::uint32_t>(object, "process");
    const auto name = Member<std::string>(object, "name");
    const auto line = Member<std::string>(object, "line");
    if (!time || !process || !name || !line) {
        return NotRecorded{};
    }
    return SeenLine{*time, *process, *name, *line};
}

} // namespace kestraboot::tools
