// The verdict on one device that arrived.
#pragma once

#include "tools/trace/lines/time_stamp.h"

#include <cstdint>
#include <string>
#include <vector>

namespace kestraboot::tools
{

inline constexpr const char* kVolumeTracker = "VolumeTracker";
inline constexpr const char* kWiaTracker = "WiaTracker";
inline constexpr const char* kStiTracker = "StiTracker";
/// Device plugins write no line when a device arrives: the line of its start identifies it.
inline constexpr const char* kPluginTracker = "Plugin";

// The reasons why a device was accepted or refused.
inline constexpr const char* kSupportedFile = "supported-file";
inline constexpr const char* kImagingDevice = "imaging-device";
inline constexpr const char* kTwainSource = "twain-source";
inline constexpr const char* kPluginReport = "plugin-report";
inline constexpr const char* kNoDevice = "no-device"; ///< a start whose lines name no device
inline constexpr const char* kUnfitDrive = "unfit-drive";
inline constexpr const char* kSearchOff = "search-off";
inline constexpr const char* kNoSupportedFile = "no-supported-file";
inline constexpr const char* kNothingListed = "nothing-listed";
inline constexpr const char* kNoDeviceType = "no-device-type";
inline constexpr const char* kNoApplication = "no-application"; ///< also an outcome
inline constexpr const char* kReasonNotSeen = "reason-not-seen";
inline constexpr const char* kUnfinished = "unfinished";

// The host's action on an accepted device.
inline constexpr const char* kStarted = "started";
inline constexpr const char* kOutsideConsoleSession = "outside-console-session";
inline constexpr const char* kNoMode = "no-mode";
inline constexpr const char* kNoOwnApplication = "no-own-application";
inline constexpr const char* kOrganiserNotStarted = "organiser-not-started";
inline constexpr const char* kNoStartSeen = "no-start-seen";

enum class Decision { Open, Accepted, Refused };

struct Arrival {
    TimeStamp noticed; ///< time of the first line about it
    std::uint32_t processId = 0;
    std::string processName;
    std::string tracker; ///< empty for kNoDevice
    std::string source;  ///< the tracker's word: "REMOVABLE DEVICE"; empty if none
    std::string kind;    ///< "volume", "camera", "scanner", ... or empty
    std::string device;  ///< "E:"; empty if it is not known
    bool deviceCut = false;
    std::vector<std::string> plugins; ///< of kPluginTracker: the plugins that serve in this process

    Decision decision = Decision::Open;
    const char* rule = kUnfinished;

    // The last attempt on a volume, which decides.
    std::uint64_t attempts = 0;
    std::uint64_t folders = 0; ///< seen; lines do not show which of them were opened
    std::uint64_t files = 0;
    unsigned deepestLevel = 0;
    std::string file; ///< the last one seen: for kSupportedFile the one that decided

    const char* outcome = ""; ///< for accepted ones
    std::string application;
    std::string mode;
    std::string startLine;
    std::int64_t millisecondsToEnd = 0; ///< from the first line to the start or the last line
};

/// As a part of a sentence, without a full stop.
[[nodiscard]] std::string WhyText(const Arrival& arrival);
[[nodiscard]] std::string OutcomeText(const Arrival& arrival);

} // namespace kestraboot::tools
