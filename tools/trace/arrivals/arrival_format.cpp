#include "tools/trace/arrivals/arrival_format.h"

#include "tools/common/json.h"
#include "tools/trace/lines/line_format.h"

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

void AddSearch(JsonObject& object, const Arrival& arrival)
{
    object.Number("attempts", static_cast<std::int64_t>(arrival.attempts))
        .Number("folders", static_cast<std::int64_t>(arrival.folders))
        .Number("files", static_cast<std::int64_t>(arrival.files))
        .Number("deepestLevel", arrival.deepestLevel)
        .Text("lastFile", arrival.file);
}

void AddOutcome(JsonObject& object, const Arrival& arrival)
{
    object.Text("outcome", arrival.outcome).Text("outcomeText", OutcomeText(arrival));
    if (std::string_view(arrival.outcome) == kStarted) {
        object.Text("application", arrival.application)
            .Text("mode", arrival.mode)
            .Text("startLine", arrival.startLine);
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
    JsonObject object;
    object.Text("time", IsoText(arrival.noticed))
        .Number("process", arrival.processId)
        .Text("name", arrival.processName)
        .Text("tracker", arrival.tracker)
        .Text("source", arrival.source)
        .Text("kind", arrival.kind)
        .Text("device", arrival.device);
    if (arrival.decision == Decision::Open) {
        object.Null("accepted");
    } else {
        object.Flag("accepted", arrival.decision == Decision::Accepted);
    }
    object.Text("rule", arrival.rule).Text("why", WhyText(arrival));
    if (arrival.tracker == kVolumeTracker) {
        AddSearch(object, arrival);
    }
    if (arrival.decision == Decision::Accepted) {
        AddOutcome(object, arrival);
    }
    object.Number("milliseconds", arrival.millisecondsToEnd);
    return object.Line();
}

} // namespace kestraboot::tools
