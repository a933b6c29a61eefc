// The meaning of a line for an arrival.
#pragma once

#include <string>
#include <string_view>

namespace kestraboot::tools
{

enum class EventType {
    None, ///< nothing

    VolumeNotice,   ///< Windows reported a device; which one is not known yet
    VolumeFound,    ///< `kind` and `device`
    VolumeUnfit,    ///< not a drive that cards come in
    SearchOff,      ///< the search is disabled
    FolderSeen,     ///< `level`
    FileSeen,       ///< `level`, `file`
    FileFits,       ///< the file seen last is of a supported format
    AttemptFailed,  ///< another one may follow
    VolumeRefused,  ///< the tracker has finished with it
    VolumeScanDone, ///< the tracker has finished with every device that it found

    DeviceFound,      ///< `source`, `kind` and `device`
    TypeUnknownToWia, ///< a device that is neither camera nor scanner, from the WIA tracker
    TypeUnknownToSti, ///< the same from the still-image tracker

    LaunchRefused, ///< `rule`; the arrival that is being reported is not served
    NoneInstalled, ///< this process serves no more arrivals; also written at other times
    Started,       ///< the line is a start line
    PluginServes,  ///< `source` is the plugin's name
};

struct TraceEvent {
    EventType type = EventType::None;
    std::string source; ///< the tracker's word for the device: "WIA DEVICE"
    std::string kind;   ///< "volume", "camera", "scanner" or empty
    std::string device;
    std::string file;
    unsigned level = 0;
    bool cut = false;         ///< the line was too long for the library: `device` is its beginning
    const char* tracker = ""; ///< of the found device
    const char* rule = "";    ///< see arrival.h
};

/// `text` has no line end.
[[nodiscard]] TraceEvent ReadTraceEvent(std::string_view text);

} // namespace kestraboot::tools
