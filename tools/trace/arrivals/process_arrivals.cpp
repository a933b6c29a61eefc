#include "tools/trace/arrivals/process_arrivals.h"

#include "tools/trace/arrivals/start_match.h"
#include "tools/trace/lines/start_line.h"
#include "tools/trace/lines/trace_line.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace kestraboot::tools
{
namespace
{

void SetEnd(Arrival& arrival, const SeenLine& line) noexcept
{
    arrival.millisecondsToEnd = line.time.upMilliseconds - arrival.noticed.upMilliseconds;
}

} // namespace

void ProcessArrivals::Take(const SeenLine& line, const TraceEvent& event)
{
    lastLine = line.time.upMilliseconds;
    switch (event.type) {
    case EventType::VolumeNotice:
        notice = FreshNotice(line).value_or(line.time);
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
    case EventType::PluginServes:
        TakePlugin(event.source);
        break;
    case EventType::None:
        break;
    default:
        TakeSearch(line, event);
    }
}

OpenDevice& ProcessArrivals::Open(DeviceState state, const SeenLine& line, const char* tracker,
                                  const TraceEvent& event)
{
    Arrival arrival;
    arrival.noticed = line.time;
    arrival.processId = line.processId;
    arrival.processName = line.processName;
    arrival.tracker = tracker;
    arrival.source = event.source;
    arrival.kind = event.kind;
    arrival.device = event.device;
    arrival.deviceCut = event.cut;
    if (state == DeviceState::Launching) {
        arrival.decision = Decision::Accepted;
    }
    return devices.Add(state, std::move(arrival), line.time.upMilliseconds);
}

OpenDevice& ProcessArrivals::OpenUnannounced(const SeenLine& line, const TraceEvent& event)
{
    const bool named = !event.device.empty();
    OpenDevice& device = Open(DeviceState::Launching, line, named ? kPluginTracker : "", event);
    device.arrival.rule = named ? kPluginReport : kNoDevice;
    if (named) {
        device.arrival.plugins = plugins;
    }
    return device;
}

std::optional<TimeStamp> ProcessArrivals::FreshNotice(const SeenLine& line) const
{
    const bool tooOld = notice && line.time.upMilliseconds - notice->upMilliseconds > kLongestNotice;
    return tooOld ? std::nullopt : notice;
}

void ProcessArrivals::TakePlugin(const std::string& name)
{
    if (plugins.size() < kMostPlugins && std::ranges::find(plugins, name) == plugins.end()) {
        plugins.push_back(name);
    }
}

void ProcessArrivals::TakeVolumeFound(const SeenLine& line, const TraceEvent& event)
{
    EndVolume(); // the tracker went on
    OpenDevice& device = Open(DeviceState::Searching, line, event.tracker, event);
    device.arrival.noticed = FreshNotice(line).value_or(line.time);
    notice.reset();
}

void ProcessArrivals::TakeSearch(const SeenLine& line, const TraceEvent& event)
{
    OpenDevice* const volume = devices.Searching();
    if (volume == nullptr) {
        return; // its beginning was before our start
    }
    volume->lastLine = line.time.upMilliseconds;
    SetEnd(volume->arrival, line);
    TakeSearchLine(volume->search, volume->arrival, event);
    if (volume->arrival.decision == Decision::Refused) {
        devices.Conclude(*volume);
    } else if (volume->arrival.decision == Decision::Accepted) {
        devices.Accept(*volume);
    }
}

void ProcessArrivals::TakeDeviceFound(const SeenLine& line, const TraceEvent& event)
{
    const char* const tracker = event.type == EventType::TypeUnknownToWia   ? kWiaTracker
                                : event.type == EventType::TypeUnknownToSti ? kStiTracker
                                                                            : event.tracker;
    OpenDevice& device = Open(DeviceState::Launching, line, tracker, event);
    Arrival& arrival = device.arrival;
    if (event.type != EventType::DeviceFound) {
        arrival.decision = Decision::Refused;
        arrival.rule = kNoDeviceType;
        devices.Conclude(device);
        return;
    }
    arrival.rule = arrival.source == "TWAIN DEVICE" ? kTwainSource : kImagingDevice;
    arrival.outcome = kNoStartSeen;
}

void ProcessArrivals::TakeLaunch(const SeenLine& line, const TraceEvent& event)
{
    OpenDevice* const first = devices.AcceptedFirst();
    OpenDevice& device = first != nullptr ? *first : OpenUnannounced(line, {});
    device.arrival.outcome = event.rule;
    SetEnd(device.arrival, line);
    devices.Conclude(device);
}

void ProcessArrivals::TakeNoneInstalled(const SeenLine& line)
{
    devices.ConcludeAll([&](OpenDevice& device) {
        Arrival& arrival = device.arrival;
        if (device.state == DeviceState::Launching) {
            arrival.outcome = kNoApplication;
        } else {
            arrival.decision = Decision::Refused;
            arrival.rule = kNoApplication;
        }
        SetEnd(arrival, line);
    });
}

void ProcessArrivals::TakeStart(const SeenLine& line)
{
    const std::string_view text = WithoutLineEnd(line.text);
    const std::optional<StartLine> start = ParseStartLine(text);
    if (!start) {
        return;
    }
    OpenDevice* device = devices.Named(*start);
    if (device == nullptr) {
        if (!hasTheLibrary && MayBeOfTheStarted(*start, line.processName)) {
            return;
        }
        TraceEvent event;
        event.kind = start->kindGuessed ? std::string() : start->kind;
        event.device = start->device;
        device = &OpenUnannounced(line, event);
    }
    Arrival& arrival = device->arrival;
    if (arrival.deviceCut) {
        arrival.device = start->device;
    }
    arrival.outcome = kStarted;
    arrival.application = start->application;
    arrival.mode = start->mode;
    arrival.startLine = text;
    SetEnd(arrival, line);
    devices.Conclude(*device);
}

void ProcessArrivals::EndVolume()
{
    if (const OpenDevice* const volume = devices.Volume()) {
        devices.Conclude(*volume);
    }
}

void ProcessArrivals::End()
{
    devices.ConcludeAll([](const OpenDevice&) {});
}

bool ProcessArrivals::IsOver(std::int64_t upMilliseconds) const noexcept
{
    return devices.WaitingCount() == 0 && plugins.empty() &&
           upMilliseconds - lastLine > OpenDevices::kLongestSilence;
}

} // namespace kestraboot::tools
