// Filters lines and arrivals by component or tracker (--only), by process (--process) and by text
// (--match). Each filter that is given must let a line pass.
#pragma once

#include "tools/trace/lines/trace_line.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace kestraboot::tools
{

/// The values of --only, which shows only lines and arrivals of that component or tracker: components,
/// then the trackers. "Plugin" is all plugins, and "Plugin:NAME" one.
inline constexpr std::string_view kTags[] = {"DeviceConnect",   "KestraBoot",    "KestraProxy",
                                             "KestraProxy:OEM", "VolumeTracker", "WiaTracker",
                                             "StiTracker",      "Plugin"};

inline constexpr std::size_t kFirstTracker = 4;

/// As in a line ("<***DeviceConnect***>") or bare, in any case.
[[nodiscard]] bool IsTag(std::string_view tag);

struct Wanted {
    std::vector<std::string> tags; ///< one of them; empty: all lines
    std::vector<std::string>
        processes;    ///< one of them: a number, or a file's name with or without ".exe"
    std::string text; ///< contained in the line, in any case
};

class LineFilter
{
public:
    explicit LineFilter(const Wanted& asked);

    /// The tracker is "Plugin" for every name in `plugins`.
    [[nodiscard]] bool PassesTags(std::string_view component, std::string_view tracker,
                                  std::span<const std::string> plugins) const;
    /// The scan of a card belongs to the tracker that found it, tagged or not.
    [[nodiscard]] bool PassesTags(const TraceLine& line) const;
    [[nodiscard]] bool PassesProcess(std::uint32_t id, std::string_view name) const;
    [[nodiscard]] bool PassesText(std::string_view text) const;

private:
    std::vector<std::string> tags;
    std::vector<std::string> processes;
    std::string text;
};

} // namespace kestraboot::tools
