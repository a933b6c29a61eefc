#include "tools/trace/arrivals/process_arrivals.h"

#include "tools/trace/arrivals/start_match.h"
#include "tools/trace/lines/trace_line.h"

#include <algorithm>
#include <string_view>

namespace kestraboot::tools
{
namespace
{

bool IsOpenVolume(const Arrival& arrival)
{
    return arrival.tracker == kVolumeTracker && arrival.decision == Decision::Open;
}

} // namespace

void ProcessArrivals::Take(const SeenLine& line, const TraceEvent& event)
{
    lastLine = line.time.upMilliseconds;
    switch (event.type) {
    case EventType::VolumeNotice:
        if (!HasFreshNotice(line)) {
            notice = line.time;
        }
        break;
    case EventType::VolumeFound:
        TakeVolumeFound(line, event);
        break;
    case EventType::VolumeScanDone:
        EndVolume();
        break;
    case EventType::DeviceFound:
    case EventType::TypeUnknownToWia:
    case EventType::TypeUnknownToSti:
        TakeDeviceFound(line, event);
        break;
    case EventType::LaunchRefused:
        TakeLaunch(line, event);
        break;
    case EventType::NoneInstalled:
        TakeNoneInstalled(line);
        break;
    case EventType::Started:
        TakeStart(line);
        break;
    case EventType::None:
        break;
    default:
        TakeSearch(line, event);
    }
}

ProcessArrivals::Place ProcessArrivals::Open(const SeenLine& line, const char* tracker,
                                             const TraceEvent& event)
{
    if (waiting.size() == kMostWaiting) {
        Close(waiting.begin());
    }
    Arrival arrival;
    arrival.noticed = line.time;
    arrival.processId = line.processId;
    arrival.processName = line.processName;
    arrival.tracker = tracker;
    arrival.source = event.source;
    arrival.kind = event.kind;
    arrival.device = event.device;
    arrival.deviceCut = event.cut;
    waiting.push_back({std::move(arrival), line.time.upMilliseconds});
    return std::prev(waiting.end());
}

ProcessArrivals::Place ProcessArrivals::OpenUnannounced(const SeenLine& line, const TraceEvent& event)
{
    const bool named = !event.device.empty();
    const Place place = Open(line, named ? kPluginTracker : "", event);
    place->arrival.decision = Decision::Accepted;
    place->arrival.rule = named ? kPluginReport : kNoDevice;
    return place;
}

bool ProcessArrivals::HasFreshNotice(const SeenLine& line) const
{
    return notice && line.time.upMilliseconds - notice->upMilliseconds <= kLongestNotice;
}

void ProcessArrivals::TakeVolumeFound(const SeenLine& line, const TraceEvent& event)
{
    EndVolume(); // the tracker went on
    const Place place = Open(line, event.tracker, event);
    if (HasFreshNotice(line)) {
        place->arrival.noticed = *notice;
    }
    notice.reset();
}

void ProcessArrivals::TakeSearch(const SeenLine& line, const TraceEvent& event)
{
    const auto place = std::ranges::find_if(waiting, [](const Waiting& device) {
        return IsOpenVolume(device.arrival);
    });
    if (place == waiting.end()) {
        return; // its beginning was before our time
    }
    place->lastLine = line.time.upMilliseconds;
    Arrival& arrival = place->arrival;
    arrival.millisecondsToEnd = line.time.upMilliseconds - arrival.noticed.upMilliseconds;
    TakeSearchLine(place->search, arrival, event);
    if (arrival.decision == Decision::Refused) {
        Close(place);
    } else if (arrival.decision == Decision::Accepted) {
        waiting.splice(waiting.end(), waiting, place);
    }
}

void ProcessArrivals::TakeDeviceFound(const SeenLine& line, const TraceEvent& event)
{
    const char* const tracker = event.type == EventType::TypeUnknownToWia   ? kWiaTracker
                                : event.type == EventType::TypeUnknownToSti ? kStiTracker
                                                                            : event.tracker;
    const Place place = Open(line, tracker, event);
    Arrival& arrival = place->arrival;
    if (event.type != EventType::DeviceFound) {
        arrival.decision = Decision::Refused;
        arrival.rule = kNoDeviceType;
        Close(place);
        return;
    }
    arrival.decision = Decision::Accepted;
    arrival.rule = arrival.source == "TWAIN DEVICE" ? kTwainSource : kImagingDevice;
    arrival.outcome = kNoStartSeen;
}

void ProcessArrivals::TakeLaunch(const SeenLine& line, const TraceEvent& event)
{
    auto place = std::ranges::find_if(waiting, [](const Waiting& device) {
        return device.arrival.decision == Decision::Accepted;
    });
    if (place == waiting.end()) {
        place = OpenUnannounced(line, {});
    }
    Arrival& arrival = place->arrival;
    arrival.outcome = event.rule;
    arrival.millisecondsToEnd = line.time.upMilliseconds - arrival.noticed.upMilliseconds;
    Close(place);
}

void ProcessArrivals::TakeNoneInstalled(const SeenLine& line)
{
    for (Waiting& device : waiting) {
        Arrival& arrival = device.arrival;
        if (arrival.decision == Decision::Accepted) {
            arrival.outcome = kNoApplication;
        } else {
            arrival.decision = Decision::Refused;
            arrival.rule = kNoApplication;
        }
        arrival.millisecondsToEnd = line.time.upMilliseconds - arrival.noticed.upMilliseconds;
    }
    End();
}

/// Among those that were given up where none waits.
ProcessArrivals::Place ProcessArrivals::FindNamed(const StartLine& start)
{
    const auto named = [&](const Waiting& device) {
        return device.arrival.decision == Decision::Accepted && Names(start, device.arrival);
    };
    const Place place = std::ranges::find_if(waiting, named);
    const Place late = std::ranges::find_if(givenUp, named);
    if (place != waiting.end() || late == givenUp.end()) {
        return place;
    }
    waiting.splice(waiting.end(), givenUp, late);
    return late;
}

void ProcessArrivals::TakeStart(const SeenLine& line)
{
    const std::string_view text = WithoutLineEnd(line.text);
    const std::optional<StartLine> start = ParseStartLine(text);
    if (!start) {
        return;
    }
    auto place = FindNamed(*start);
    if (place == waiting.end()) {
        if (!hasTheLibrary && MayBeOfTheStarted(*start, line.processName)) {
            return;
        }
        TraceEvent event;
        event.kind = start->kindGuessed ? std::string() : start->kind;
        event.device = start->device;
        place = OpenUnannounced(line, event);
    }
    Arrival& arrival = place->arrival;
    if (arrival.deviceCut) {
        arrival.device = start->device;
    }
    arrival.outcome = kStarted;
    arrival.application = start->application;
    arrival.mode = start->mode;
    arrival.startLine = text;
    arrival.millisecondsToEnd = line.time.upMilliseconds - arrival.noticed.upMilliseconds;
    Close(place);
}

void ProcessArrivals::EndVolume()
{
    const auto place = std::ranges::find(waiting, kVolumeTracker, [](const Waiting& device) {
        return std::string_view(device.arrival.tracker);
    });
    if (place != waiting.end()) {
        Close(place);
    }
}

void ProcessArrivals::Close(Place place)
{
    std::list<Waiting> closed;
    closed.splice(closed.begin(), waiting, place);
    tell(closed.front().arrival);
    if (std::string_view(closed.front().arrival.outcome) == kNoStartSeen) {
        givenUp.splice(givenUp.end(), closed);
        if (givenUp.size() > kMostWaiting) {
            givenUp.pop_front();
        }
    }
}

void ProcessArrivals::End()
{
    while (!waiting.empty()) {
        Close(waiting.begin());
    }
}

void ProcessArrivals::Tick(std::int64_t upMilliseconds)
{
    for (Place place = waiting.begin(); place != waiting.end();) {
        const Place current = place++;
        const bool launching = current->arrival.decision == Decision::Accepted;
        if (upMilliseconds - current->lastLine > (launching ? kLongestLaunch : kLongestSilence)) {
            Close(current);
        }
    }
    std::erase_if(givenUp, [&](const Waiting& device) {
        return upMilliseconds - device.lastLine > kLongestSilence;
    });
}

bool ProcessArrivals::IsOver(std::int64_t upMilliseconds) const noexcept
{
    return waiting.empty() && upMilliseconds - lastLine > kLongestSilence;
}

} // namespace kestraboot::tools
