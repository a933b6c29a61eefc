// Which lines are shown: by tag, by process and by text. Each of the three must let a line pass.
#pragma once

#include "tools/trace/lines/trace_line.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestraboot::tools
{

/// The tags that can be asked for, by component, then by what notices devices. Of all plugins, and
/// "Plugin:NAME" of one.
inline constexpr std::string_view kTags[] = {"DeviceConnect",   "KestraBoot",    "KestraProxy",
                                             "KestraProxy:OEM", "VolumeTracker", "WiaTracker",
                                             "StiTracker",      "Plugin"};

inline constexpr std::size_t kFirstTracker = 4;

/// As they stand in a line ("<***DeviceConnect***>") or bare; case does not matter.
[[nodiscard]] bool IsTag(std::string_view tag);

struct Wanted {
    std::vector<std::string> tags; ///< one of them; all lines where it is empty
    std::vector<std::string>
        processes;    ///< one of them: a number, or a file's name with or without ".exe"
    std::string text; ///< to be found in the line, in letters of either case
};

class LineFilter
{
public:
    explicit LineFilter(const Wanted& asked);

    /// The tracker is "Plugin" for all that `plugins` are named for.
    [[nodiscard]] bool PassesTags(std::string_view component, std::string_view tracker,
                                  std::span<const std::string> plugins) const;
    /// The search of a card belongs to the tracker that found it, tagged or not.
    [[nodiscard]] bool PassesTags(const TraceLine& line) const;
    [[nodiscard]] bool PassesProcess(std::uint32_t id, std::string_view name) const;
    [[nodiscard]] bool PassesText(std::string_view text) const;

private:
    std::vector<std::string> tags;
    std::vector<std::string> processes;
    std::string text;
};

} // namespace kestraboot::tools
