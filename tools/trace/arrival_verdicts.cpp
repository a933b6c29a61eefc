#include "tools/trace/arrival_verdicts.h"

#include "tools/trace/start_match.h"
#include "tools/trace/trace_line.h"

#include <algorithm>
#include <string_view>

namespace kestraboot::tools
{
namespace
{

std::string_view WithoutLineEnd(std::string_view text) noexcept
{
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
        text.remove_suffix(1);
    }
    return text;
}

bool IsOpenVolume(const Arrival& arrival)
{
    return arrival.tracker == kVolumeTracker && arrival.decision == Decision::Open;
}

} // namespace

void ArrivalVerdicts::Take(const SeenLine& line)
{
    const std::string_view text = WithoutLineEnd(line.text);
    const TraceEvent event = ReadTraceEvent(text);
    const bool tagged = event.type != EventType::Started && !ParseTraceLine(text).component.empty();
    if (event.type == EventType::None && !tagged) {
        return;
    }
    Process& process = ProcessOf(line);
    process.hasTheLibrary = process.hasTheLibrary || tagged;
    switch (event.type) {
    case EventType::VolumeNotice:
        if (!HasFreshNotice(process, line)) {
            process.notice = line.time;
        }
        break;
    case EventType::VolumeFound:
        TakeVolumeFound(process, line, event);
        break;
    case EventType::VolumeScanDone:
        EndVolume(process);
        break;
    case EventType::DeviceFound:
    case EventType::TypeUnknownToWia:
    case EventType::TypeUnknownToSti:
        TakeDeviceFound(process, line, event);
        break;
    case EventType::LaunchRefused:
        TakeLaunch(process, line, event);
        break;
    case EventType::NoneInstalled:
        TakeNoneInstalled(process, line);
        break;
    case EventType::Started:
        TakeStart(process, line);
        break;
    case EventType::None:
        break;
    default:
        TakeSearch(process, line, event);
    }
}

ArrivalVerdicts::Process& ArrivalVerdicts::ProcessOf(const SeenLine& line)
{
    const auto known = std::ranges::find(processes, line.processId, &Process::id);
    if (known != processes.end()) {
        processes.splice(processes.end(), processes, known);
    } else {
        if (processes.size() == kMostProcesses) {
            CloseAll(processes.front());
            processes.pop_front();
        }
        processes.push_back({line.processId, 0, false, {}, {}, {}});
    }
    Process& process = processes.back();
    process.lastLine = line.time.upMilliseconds;
    return process;
}

ArrivalVerdicts::Place ArrivalVerdicts::Open(Process& process, const SeenLine& line, const char* tracker,
                                             const TraceEvent& event)
{
    if (process.waiting.size() == kMostWaiting) {
        Close(process, process.waiting.begin());
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
    process.waiting.push_back({std::move(arrival), line.time.upMilliseconds});
    return std::prev(process.waiting.end());
}

ArrivalVerdicts::Place ArrivalVerdicts::OpenUnannounced(Process& process, const SeenLine& line,
                                                        const TraceEvent& event)
{
    const bool named = !event.device.empty();
    const Place place = Open(process, line, named ? kPluginTracker : "", event);
    place->arrival.decision = Decision::Accepted;
    place->arrival.rule = named ? kPluginReport : kNoDevice;
    return place;
}

bool ArrivalVerdicts::HasFreshNotice(const Process& process, const SeenLine& line)
{
    return process.notice && line.time.upMilliseconds - process.notice->upMilliseconds <= kLongestNotice;
}

void ArrivalVerdicts::TakeVolumeFound(Process& process, const SeenLine& line, const TraceEvent& event)
{
    EndVolume(process); // the tracker went on
    const Place place = Open(process, line, event.tracker, event);
    if (HasFreshNotice(process, line)) {
        place->arrival.noticed = *process.notice;
    }
    process.notice.reset();
}

void ArrivalVerdicts::TakeSearch(Process& process, const SeenLine& line, const TraceEvent& event)
{
    const auto place = std::ranges::find_if(process.waiting, [](const Waiting& waiting) {
        return IsOpenVolume(waiting.arrival);
    });
    if (place == process.waiting.end()) {
        return; // its beginning was before our time
    }
    place->lastLine = line.time.upMilliseconds;
    Arrival& arrival = place->arrival;
    arrival.millisecondsToEnd = line.time.upMilliseconds - arrival.noticed.upMilliseconds;
    TakeSearchLine(place->search, arrival, event);
    if (arrival.decision == Decision::Refused) {
        Close(process, place);
    } else if (arrival.decision == Decision::Accepted) {
        process.waiting.splice(process.waiting.end(), process.waiting, place);
    }
}

void ArrivalVerdicts::TakeDeviceFound(Process& process, const SeenLine& line, const TraceEvent& event)
{
    const char* const tracker = event.type == EventType::TypeUnknownToWia   ? kWiaTracker
                                : event.type == EventType::TypeUnknownToSti ? kStiTracker
                                                                            : event.tracker;
    const Place place = Open(process, line, tracker, event);
    Arrival& arrival = place->arrival;
    if (event.type != EventType::DeviceFound) {
        arrival.decision = Decision::Refused;
        arrival.rule = kNoDeviceType;
        Close(process, place);
        return;
    }
    arrival.decision = Decision::Accepted;
    arrival.rule = arrival.source == "TWAIN DEVICE" ? kTwainSource : kImagingDevice;
    arrival.outcome = kNoStartSeen;
}

void ArrivalVerdicts::TakeLaunch(Process& process, const SeenLine& line, const TraceEvent& event)
{
    auto place = std::ranges::find_if(process.waiting, [](const Waiting& waiting) {
        return waiting.arrival.decision == Decision::Accepted;
    });
    if (place == process.waiting.end()) {
        place = OpenUnannounced(process, line, {});
    }
    Arrival& arrival = place->arrival;
    arrival.outcome = event.rule;
    arrival.millisecondsToEnd = line.time.upMilliseconds - arrival.noticed.upMilliseconds;
    Close(process, place);
}

void ArrivalVerdicts::TakeNoneInstalled(Process& process, const SeenLine& line)
{
    for (Waiting& waiting : process.waiting) {
        Arrival& arrival = waiting.arrival;
        if (arrival.decision == Decision::Accepted) {
            arrival.outcome = kNoApplication;
        } else {
            arrival.decision = Decision::Refused;
            arrival.rule = kNoApplication;
        }
        arrival.millisecondsToEnd = line.time.upMilliseconds - arrival.noticed.upMilliseconds;
    }
    CloseAll(process);
}

/// Among those that were given up where none waits.
ArrivalVerdicts::Place ArrivalVerdicts::FindNamed(Process& process, const StartLine& start)
{
    const auto named = [&](const Waiting& waiting) {
        return waiting.arrival.decision == Decision::Accepted && Names(start, waiting.arrival);
    };
    const Place place = std::ranges::find_if(process.waiting, named);
    const Place late = std::ranges::find_if(process.givenUp, named);
    if (place != process.waiting.end() || late == process.givenUp.end()) {
        return place;
    }
    process.waiting.splice(process.waiting.end(), process.givenUp, late);
    return late;
}

void ArrivalVerdicts::TakeStart(Process& process, const SeenLine& line)
{
    const std::string_view text = WithoutLineEnd(line.text);
    const std::optional<StartLine> start = ParseStartLine(text);
    if (!start) {
        return;
    }
    auto place = FindNamed(process, *start);
    if (place == process.waiting.end()) {
        if (!process.hasTheLibrary && MayBeOfTheStarted(*start, line.processName)) {
            return;
        }
        TraceEvent event;
        event.kind = start->kindGuessed ? std::string() : start->kind;
        event.device = start->device;
        place = OpenUnannounced(process, line, event);
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
    Close(process, place);
}

void ArrivalVerdicts::EndVolume(Process& process)
{
    const auto place = std::ranges::find(process.waiting, kVolumeTracker, [](const Waiting& waiting) {
        return std::string_view(waiting.arrival.tracker);
    });
    if (place != process.waiting.end()) {
        Close(process, place);
    }
}

void ArrivalVerdicts::Close(Process& process, Place place)
{
    std::list<Waiting> closed;
    closed.splice(closed.begin(), process.waiting, place);
    tell(closed.front().arrival);
    if (std::string_view(closed.front().arrival.outcome) == kNoStartSeen) {
        process.givenUp.splice(process.givenUp.end(), closed);
        if (process.givenUp.size() > kMostWaiting) {
            process.givenUp.pop_front();
        }
    }
}

void ArrivalVerdicts::CloseAll(Process& process)
{
    while (!process.waiting.empty()) {
        Close(process, process.waiting.begin());
    }
}

void ArrivalVerdicts::Tick(std::int64_t upMilliseconds)
{
    for (auto process = processes.begin(); process != processes.end();) {
        for (Place place = process->waiting.begin(); place != process->waiting.end();) {
            const Place current = place++;
            const bool launching = current->arrival.decision == Decision::Accepted;
            if (upMilliseconds - current->lastLine > (launching ? kLongestLaunch : kLongestSilence)) {
                Close(*process, current);
            }
        }
        std::erase_if(process->givenUp, [&](const Waiting& waiting) {
            return upMilliseconds - waiting.lastLine > kLongestSilence;
        });
        const bool silent = upMilliseconds - process->lastLine > kLongestSilence;
        process = silent && process->waiting.empty() ? processes.erase(process) : std::next(process);
    }
}

void ArrivalVerdicts::End()
{
    for (Process& process : processes) {
        CloseAll(process);
    }
    processes.clear();
}

std::size_t ArrivalVerdicts::OpenCount() const noexcept
{
    std::size_t count = 0;
    for (const Process& process : processes) {
        count += process.waiting.size();
    }
    return count;
}

} // namespace kestraboot::tools
