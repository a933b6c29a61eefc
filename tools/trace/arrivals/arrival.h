// What became of one device that arrived.
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
/// Device plugins write no line when a device arrives: it is known by the line of its start.
inline constexpr const char* kPluginTracker = "Plugin";

// Why a device was accepted or refused.
inline constexpr const char* kSupportedFile = "supported-file";
inline constexpr const char* kImagingDevice = "imaging-device";
inline constexpr const char* kTwainSource = "twain-source";
inline constexpr const char* kPluginReport = "plugin-report";
inline constexpr const char* kNoDevice = "no-device"; ///< a start whose lines name none
inline constexpr const char* kUnfitDrive = "unfit-drive";
inline constexpr const char* kSearchOff = "search-off";
inline constexpr const char* kNoSupportedFile = "no-supported-file";
inline constexpr const char* kNothingListed = "nothing-listed";
inline constexpr const char* kNoDeviceType = "no-device-type";
inline constexpr const char* kNoApplication = "no-application"; ///< an outcome too
inline constexpr const char* kReasonNotSeen = "reason-not-seen";
inline constexpr const char* kUnfinished = "unfinished";

// What the host did with an accepted one.
inline constexpr const char* kStarted = "started";
inline constexpr const char* kOutsideConsoleSession = "outside-console-session";
inline constexpr const char* kNoMode = "no-mode";
inline constexpr const char* kNoOwnApplication = "no-own-application";
inline constexpr const char* kOrganiserNotStarted = "organiser-not-started";
inline constexpr const char* kNoStartSeen = "no-start-seen";

enum class Decision { Open, Accepted, Refused };

struct Arrival {
    TimeStamp noticed; ///< when the first line about it came
    std::uint32_t processId = 0;
    std::string processName;
    std::string tracker; ///< empty for kNoDevice
    std::string source;  ///< what the tracker calls it: "REMOVABLE DEVICE"; empty where none told of it
    std::string kind;    ///< "volume", "camera", "scanner", ... or empty
    std::string device;  ///< "E:"; empty where it is not known
    bool deviceCut = false;
    std::vector<std::string> plugins; ///< of kPluginTracker: those that serve in this process

    Decision decision = Decision::Open;
    const char* rule = kUnfinished;

    // Of a volume's last attempt, the deciding one.
    std::uint64_t attempts = 0;
    std::uint64_t folders = 0; ///< seen; lines do not say which of them were opened
    std::uint64_t files = 0;
    unsigned deepestLevel = 0;
    std::string file; ///< the last one looked at: for kSupportedFile the one that decided

    const char* outcome = ""; ///< for accepted ones
    std::string application;
    std::string mode;
    std::string startLine;
    std::int64_t millisecondsToEnd = 0; ///< from the notice to the start, or to the last line about it
};

/// In a sentence's words, without a full stop.
[[nodiscard]] std::string WhyText(const Arrival& arrival);
[[nodiscard]] std::string OutcomeText(const Arrival& arrival);

} // namespace kestraboot::tools
