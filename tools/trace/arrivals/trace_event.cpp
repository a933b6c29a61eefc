#include "tools/trace/arrivals/trace_event.h"

#include "tools/trace/arrivals/arrival.h"
#include "tools/trace/lines/start_line.h"

namespace kestraboot::tools
{
namespace
{

struct FixedLine {
    std::string_view text;
    EventType type;
    const char* rule = "";
};

constexpr FixedLine kFixedLines[] = {
    {"<***DeviceConnect***><VolumeTracker><DEVICE ARRIVED>", EventType::VolumeNotice},
    {"<***DeviceConnect***><Unsupported volume found.>", EventType::VolumeUnfit},
    {"<***DeviceConnect***><Suppressing auto launch...>", EventType::SearchOff},
    {"<***DeviceConnect***><Supported file format is found on device.>", EventType::FileFits},
    {"<***DeviceConnect***><Supported media content check fails...Trying again.>",
     EventType::AttemptFailed},
    {"<***DeviceConnect***><VolumeTracker><Launch not possible>.", EventType::VolumeRefused},
    {"<***DeviceConnect***><VolumeTracker><Entering in polling mode.>", EventType::VolumeScanDone},
    {"<***DeviceConnect***><VolumeTracker><Exiting from polling mode.>", EventType::VolumeScanDone},
    {"Could not get the device type.", EventType::TypeUnknownToWia},
    {"<***DeviceConnect***><StiTracker><Could not get the device type.>", EventType::TypeUnknownToSti},
    {"<KestraBoot><!!! Unable to launch Kestra.>", EventType::LaunchRefused, kOutsideConsoleSession},
    {"<KestraBoot><!!! Mode not set. Unable to launch Kestra.>", EventType::LaunchRefused, kNoMode},
    {"<KestraBoot><!!! No Kestra application found for this Kestra proxy. This situation should be "
     "avoided.>",
     EventType::LaunchRefused, kNoOwnApplication},
    {"<KestraBoot><!!! Unable to start the process.>", EventType::LaunchRefused, kOrganiserNotStarted},
    {"<KestraBoot><!!! Unable to launch Vel 3.0.>", EventType::LaunchRefused, kOrganiserNotStarted},
    {"<KestraBoot><!!! No Kestra Compatible application found. This situation should be avoided.>",
     EventType::NoneInstalled},
};

/// Lines that name a device: a tag with a letter and a bar, "C|", then its identity.
struct DeviceLine {
    std::string_view begin;
    const char* tracker;
    const char* source;
};

constexpr DeviceLine kDeviceLines[] = {
    {"<***DeviceConnect***><VolumeTracker><REMOVABLE DEVICE><", kVolumeTracker, "REMOVABLE DEVICE"},
    {"<***DeviceConnect***><WiaTracker><WIA DEVICE><", kWiaTracker, "WIA DEVICE"},
    {"<***DeviceConnect***><StiTracker><WIA DEVICE><", kStiTracker, "WIA DEVICE"},
    {"<***DeviceConnect***><StiTracker><TWAIN DEVICE><", kStiTracker, "TWAIN DEVICE"},
};

constexpr std::string_view kComponent = "<***DeviceConnect***><";

std::string KindOfTag(std::string_view tag)
{
    if (tag.starts_with("V|")) {
        return "volume";
    }
    if (tag.starts_with("C|")) {
        return "camera";
    }
    return tag.starts_with("S|") ? "scanner" : "";
}

/// The rest of a line up to its last bracket; `cut` where there is none.
std::string_view UpToBracket(std::string_view rest, bool& cut) noexcept
{
    const std::size_t end = rest.rfind('>');
    cut = end == std::string_view::npos;
    return rest.substr(0, end);
}

TraceEvent DeviceEvent(const DeviceLine& line, std::string_view text)
{
    TraceEvent event;
    event.type = line.tracker == kVolumeTracker ? EventType::VolumeFound : EventType::DeviceFound;
    event.tracker = line.tracker;
    event.source = line.source;
    const std::string_view tag = UpToBracket(text.substr(line.begin.size()), event.cut);
    event.kind = KindOfTag(tag);
    // The identity of a source without a kind begins at the third character too.
    std::string_view device = tag.size() > 2 ? tag.substr(2) : std::string_view();
    if (device.size() >= 2 && device.starts_with('"') && device.ends_with('"')) {
        device = device.substr(1, device.size() - 2);
    }
    event.device = device;
    return event;
}

/// "<***DeviceConnect***><1><FILE><IMG_0001.JPG>"
TraceEvent SearchEvent(std::string_view text)
{
    TraceEvent event;
    if (!text.starts_with(kComponent)) {
        return event;
    }
    text.remove_prefix(kComponent.size());
    while (!text.empty() && text.front() >= '0' && text.front() <= '9' && event.level < 1'000'000) {
        event.level = event.level * 10 + static_cast<unsigned>(text.front() - '0');
        text.remove_prefix(1);
    }
    if (event.level == 0) {
        return event;
    }
    constexpr std::string_view kFile = "><FILE><";
    if (text.starts_with(kFile)) {
        event.type = EventType::FileSeen;
        event.file = UpToBracket(text.substr(kFile.size()), event.cut);
    } else if (text.starts_with("><FOLDER><")) {
        event.type = EventType::FolderSeen;
    }
    return event;
}

/// "<***DeviceConnect***><Phones><Devices will be detected.>"
std::string_view PluginThatServes(std::string_view text)
{
    constexpr std::string_view kServes = "><Devices will be detected.>";
    if (!text.starts_with(kComponent) || !text.ends_with(kServes) ||
        text.size() < kComponent.size() + kServes.size()) {
        return {};
    }
    return text.substr(kComponent.size(), text.size() - kComponent.size() - kServes.size());
}

} // namespace

TraceEvent ReadTraceEvent(std::string_view text)
{
    TraceEvent event;
    for (const FixedLine& line : kFixedLines) {
        if (line.text == text) {
            event.type = line.type;
            event.rule = line.rule;
            return event;
        }
    }
    for (const DeviceLine& line : kDeviceLines) {
        if (text.starts_with(line.begin)) {
            return DeviceEvent(line, text);
        }
    }
    if (ParseStartLine(text)) {
        event.type = EventType::Started;
        return event;
    }
    if (const std::string_view plugin = PluginThatServes(text); !plugin.empty()) {
        event.type = EventType::PluginServes;
        event.source = plugin;
        return event;
    }
    return SearchEvent(text);
}

} // namespace kestraboot::tools
