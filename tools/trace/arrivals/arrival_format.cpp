#include "tools/trace/arrivals/arrival_format.h"

#include "tools/trace/lines/json_line.h"
#include "tools/trace/lines/line_format.h"

#include <nlohmann/json.hpp>

#include <string_view>

namespace kestraboot::tools
{
namespace
{

std::string Indent()
{
    return std::string(kLineColumn, ' ');
}

std::string Counted(std::uint64_t count, const char* one, const char* many)
{
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

std::string What(const Arrival& arrival)
{
    const std::string kind = arrival.kind.empty() ? "device" : arrival.kind;
    return Printable(kind + ' ' + (arrival.device.empty() ? "(not named)" : arrival.device));
}

StyledText DecisionLine(const Arrival& arrival)
{
    StyledText line = LineHead(arrival.noticed, arrival.processName, arrival.processId);
    if (arrival.tracker.empty()) {
        line.push_back({Style::Plain, "start without a device: " + WhyText(arrival)});
        return line;
    }
    line.push_back({Style::Plain, What(arrival) + ' '});
    line.push_back({Style::Tracker, '<' + arrival.tracker + '>'});
    switch (arrival.decision) {
    case Decision::Accepted:
        line.push_back({Style::Good, " accepted: "});
        break;
    case Decision::Refused:
        line.push_back({Style::Bad, " refused: "});
        break;
    default:
        line.push_back({Style::Faint, " undecided: "});
    }
    line.push_back({Style::Plain, Printable(WhyText(arrival))});
    return line;
}

StyledText SearchLine(const Arrival& arrival)
{
    return {{Style::Faint, Indent() + "saw " + Counted(arrival.folders, "folder", "folders") + " and " +
                               Counted(arrival.files, "file", "files") +
                               ", attempts: " + std::to_string(arrival.attempts)}};
}

StyledText OutcomeLine(const Arrival& arrival)
{
    const std::string after = " after " + DurationText(arrival.millisecondsToEnd) + ": ";
    if (std::string_view(arrival.outcome) == kStarted) {
        return {{Style::Good, Indent() + "started" + after},
                {Style::Start, Printable(arrival.startLine)}};
    }
    return {{Style::Bad, Indent() + "nothing started: "}, {Style::Plain, OutcomeText(arrival)}};
}

void AddSearch(nlohmann::ordered_json& object, const Arrival& arrival)
{
    object["attempts"] = arrival.attempts;
    object["folders"] = arrival.folders;
    object["files"] = arrival.files;
    object["deepestLevel"] = arrival.deepestLevel;
    object["lastFile"] = arrival.file;
}

void AddOutcome(nlohmann::ordered_json& object, const Arrival& arrival)
{
    object["outcome"] = arrival.outcome;
    object["outcomeText"] = OutcomeText(arrival);
    if (std::string_view(arrival.outcome) == kStarted) {
        object["application"] = arrival.application;
        object["mode"] = arrival.mode;
        object["startLine"] = arrival.startLine;
    }
}

} // namespace

std::vector<StyledText> FormatArrival(const Arrival& arrival)
{
    std::vector<StyledText> lines = {DecisionLine(arrival)};
    if (arrival.tracker == kVolumeTracker) {
        lines.push_back(SearchLine(arrival));
    }
    if (arrival.decision == Decision::Accepted) {
        lines.push_back(OutcomeLine(arrival));
    }
    return lines;
}

std::string ArrivalJson(const Arrival& arrival)
{
    nlohmann::ordered_json object = JsonLine("arrival");
    object["time"] = IsoText(arrival.noticed);
    object["process"] = arrival.processId;
    object["name"] = arrival.processName;
    object["tracker"] = arrival.tracker;
    if (arrival.tracker == kPluginTracker) {
        object["plugins"] = arrival.plugins;
    }
    object["source"] = arrival.source;
    object["kind"] = arrival.kind;
    object["device"] = arrival.device;
    object["accepted"] = nullptr;
    if (arrival.decision != Decision::Open) {
        object["accepted"] = arrival.decision == Decision::Accepted;
    }
    object["rule"] = arrival.rule;
    object["why"] = WhyText(arrival);
    if (arrival.tracker == kVolumeTracker) {
        AddSearch(object, arrival);
    }
    if (arrival.decision == Decision::Accepted) {
        AddOutcome(object, arrival);
    }
    object["milliseconds"] = arrival.millisecondsToEnd;
    return OneLine(object);
}

} // namespace kestraboot::tools
