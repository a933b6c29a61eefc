#include "tools/trace/lines/line_format.h"

#include "tools/trace/lines/json_line.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdio>

namespace kestraboot::tools
{
namespace
{

/// Cut at a whole character of UTF-8.
std::string CutTo(std::string text, std::size_t bytes)
{
    if (text.size() > bytes) {
        while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0) == 0x80) {
            --bytes;
        }
        text.resize(bytes);
    }
    return text;
}

Style StyleOf(const TraceLine& line) noexcept
{
    switch (line.kind) {
    case LineKind::Failure:
        return Style::Bad;
    case LineKind::Start:
        return Style::Start;
    default:
        return Style::Plain;
    }
}

} // namespace

std::string Printable(std::string text)
{
    std::ranges::replace_if(
        text,
        [](char character) {
            return static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
        },
        ' ');
    return text;
}

StyledText LineHead(const TimeStamp& time, const std::string& processName, std::uint32_t processId)
{
    char process[64] = {};
    std::snprintf(process, sizeof process, "  %-18s  %6lu  ", CutTo(processName, 18).c_str(),
                  static_cast<unsigned long>(processId));
    return {{Style::Faint, ClockText(time)}, {Style::Faint, process}};
}

StyledText FormatLine(const SeenLine& seen, const TraceLine& line)
{
    StyledText text = LineHead(seen.time, seen.processName, seen.processId);
    const std::string shown = Printable(line.text);
    // The tags end where the second or third field begins.
    std::size_t from = 0;
    const auto take = [&](bool present, Style style) {
        const std::size_t end = present ? shown.find('>', from) : std::string::npos;
        if (end != std::string::npos) {
            text.push_back({style, shown.substr(from, end + 1 - from)});
            from = end + 1;
        }
    };
    if (shown.starts_with('<')) {
        take(!line.component.empty(), Style::Component);
        take(!line.tracker.empty(), Style::Tracker);
    }
    text.push_back({StyleOf(line), shown.substr(from)});
    return text;
}

std::string LineJson(const SeenLine& seen, const TraceLine& line)
{
    nlohmann::ordered_json object = JsonLine("line");
    object["time"] = IsoText(seen.time);
    object["process"] = seen.processId;
    object["name"] = seen.processName;
    object["component"] = line.component;
    object["tracker"] = line.tracker;
    object["message"] = line.message;
    object["fields"] = line.fields;
    object["failure"] = line.kind == LineKind::Failure;
    object["start"] = line.kind == LineKind::Start;
    object["line"] = line.text;
    return OneLine(object);
}

StyledText FormatLost(const TimeStamp& time, std::uint64_t lines)
{
    return {{Style::Faint, ClockText(time)},
            {Style::Bad,
             "  (" + std::to_string(lines) + " lines lost: they came faster than they could be shown)"}};
}

std::string LostJson(const TimeStamp& time, std::uint64_t lines)
{
    nlohmann::ordered_json object = JsonLine("lost");
    object["time"] = IsoText(time);
    object["lost"] = lines;
    return OneLine(object);
}

} // namespace kestraboot::tools
