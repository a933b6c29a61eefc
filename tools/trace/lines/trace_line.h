// What a debug line is made of.
//
// The library's lines are bracketed fields: component, then the tracker where there is one, then the
// message. Two kinds of lines have no tags: the command line of a started program, and a message of the
// WIA tracker. They belong to the launcher and to that tracker all the same. Lines of other programs
// have neither component nor tracker.
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
    bool ofSearch = false;           ///< told by the search of a card; such lines name no tracker
};

[[nodiscard]] std::string_view WithoutLineEnd(std::string_view text) noexcept;

/// Never fails: what is not understood is all message.
[[nodiscard]] TraceLine ParseTraceLine(std::string_view text);

} // namespace kestraboot::tools
