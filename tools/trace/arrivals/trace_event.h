// What a line says about an arrival.
#pragma once

#include <string>
#include <string_view>

namespace kestraboot::tools
{

enum class EventType {
    None, ///< nothing

    VolumeNotice,   ///< Windows told of a device; which one is not known yet
    VolumeFound,    ///< `kind` and `device`
    VolumeUnfit,    ///< not a drive that cards come in
    SearchOff,      ///< the search is switched off
    FolderSeen,     ///< `level`
    FileSeen,       ///< `level`, `file`
    FileFits,       ///< the file seen last is of a supported format
    AttemptFailed,  ///< another one may follow
    VolumeRefused,  ///< the tracker is done with it
    VolumeScanDone, ///< the tracker is done with whatever it found

    DeviceFound,      ///< `source`, `kind` and `device`
    TypeUnknownToWia, ///< a device that is neither camera nor scanner, told by the WIA tracker
    TypeUnknownToSti, ///< the same by the still-image tracker

    LaunchRefused, ///< `rule`; the arrival that was being told is not served
    NoneInstalled, ///< nothing of this process is served any more; said at other times than arrivals too
    Started,       ///< the line is a start line
    PluginServes,  ///< `source` is the plugin's name
};

struct TraceEvent {
    EventType type = EventType::None;
    std::string source; ///< what the tracker calls the device: "WIA DEVICE"
    std::string kind;   ///< "volume", "camera", "scanner" or empty
    std::string device;
    std::string file;
    unsigned level = 0;
    bool cut = false;         ///< the line was too long for the library: `device` is its beginning
    const char* tracker = ""; ///< of the found device
    const char* rule = "";    ///< see arrival.h
};

/// `text` without its line end.
[[nodiscard]] TraceEvent ReadTraceEvent(std::string_view text);

} // namespace kestraboot::tools
