// The parts of a debug line.
//
// The library's lines are bracketed fields: component, then the tracker if there is one, then the
// message. Two kinds of lines have no tags and still belong to the launcher and the WIA tracker:
// the command line of a started program, and one message of the WIA tracker. Lines of other
// programs have neither component nor tracker.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestraboot::tools
{

enum class LineKind { Message, Failure, Start };

struct TraceLine {
    LineKind kind = LineKind::Message;
    std::string component; ///< "DeviceConnect", "KestraBoot", "KestraProxy", "KestraProxy:OEM" or empty
    std::string tracker;   ///< "VolumeTracker", "WiaTracker", "StiTracker", a plugin's name, or empty
    std::string message;   ///< the rest, without brackets; fields are separated by a blank
    std::vector<std::string> fields; ///< of the message
    std::string text;                ///< the whole line, without its line end
    bool ofPlugin = false;           ///< `tracker` is a plugin's name
    bool ofSearch = false;           ///< written by the scan of a card; such lines name no tracker
};

[[nodiscard]] std::string_view WithoutLineEnd(std::string_view text) noexcept;

/// Never fails: text that is not understood becomes the message.
[[nodiscard]] TraceLine ParseTraceLine(std::string_view text);

} // namespace kestraboot::tools
