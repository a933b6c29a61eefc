#include "tools/trace/lines/trace_line.h"

#include "tools/trace/lines/start_line.h"

#include <algorithm>
#include <utility>

namespace kestraboot::tools
{
namespace
{

struct ComponentTag {
    std::string_view tag;
    std::string_view name;
};

constexpr ComponentTag kComponents[] = {
    {"***DeviceConnect***", "DeviceConnect"},
    {"KestraBoot", "KestraBoot"},
    {"KESTRABOOT", "KestraBoot"}, // one message is spelt in this way
    {"KestraProxy", "KestraProxy"},
    {"KestraProxy:OEM", "KestraProxy:OEM"},
};
constexpr std::string_view kTrackers[] = {"VolumeTracker", "WiaTracker", "StiTracker"};
constexpr std::string_view kPluginServed = "Devices will be detected.";
/// The lines of the scan of a card, except for folders and files, which begin with their level.
constexpr std::string_view kOfSearch[] = {
    "Suppressing auto launch...",
    "Unsupported volume found.",
    "Supported file format is found on device.",
    "Supported media content check fails...Trying again.",
    "Volume does not contain supported media content.",
};
constexpr std::string_view kUntaggedWiaMessage = "Could not get the device type.";

/// Brackets inside a field belong to it. The last field may lack its bracket, because long lines
/// are cut.
std::vector<std::string> Fields(std::string_view text)
{
    std::vector<std::string> fields;
    int depth = 0;
    for (const char character : text) {
        if (character == '>' && depth > 0 && --depth == 0) {
            continue;
        }
        if (character == '<' && depth++ == 0) {
            fields.emplace_back();
        } else if (depth > 0) {
            fields.back() += character;
        }
    }
    return fields;
}

std::string Joined(const std::vector<std::string>& fields)
{
    std::string text;
    for (const std::string& field : fields) {
        text += (text.empty() ? "" : " ") + field;
    }
    return text;
}

void TakeTracker(TraceLine& line)
{
    if (line.fields.empty()) {
        return;
    }
    const bool plugin = line.fields.size() == 2 && line.fields.back() == kPluginServed;
    if (plugin || std::ranges::find(kTrackers, line.fields.front()) != std::end(kTrackers)) {
        line.tracker = line.fields.front();
        line.fields.erase(line.fields.begin());
        line.ofPlugin = plugin;
    }
}

bool IsOfSearch(const TraceLine& line)
{
    if (line.component != "DeviceConnect" || !line.tracker.empty() || line.fields.empty()) {
        return false;
    }
    const std::string& first = line.fields.front();
    return first.find_first_not_of("0123456789") == std::string::npos ||
           std::ranges::find(kOfSearch, first) != std::end(kOfSearch);
}

} // namespace

std::string_view WithoutLineEnd(std::string_view text) noexcept
{
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) {
        text.remove_suffix(1);
    }
    return text;
}

TraceLine ParseTraceLine(std::string_view text)
{
    TraceLine line;
    line.text = WithoutLineEnd(text);
    if (ParseStartLine(line.text)) {
        line.kind = LineKind::Start;
        line.component = "KestraBoot";
    } else if (line.text == kUntaggedWiaMessage) {
        line.kind = LineKind::Failure;
        line.component = "DeviceConnect";
        line.tracker = "WiaTracker";
    } else if (line.text.starts_with('<')) {
        std::vector<std::string> fields = Fields(line.text);
        const auto known = std::ranges::find(kComponents, fields.front(), &ComponentTag::tag);
        if (known != std::end(kComponents)) {
            line.component = known->name;
            fields.erase(fields.begin());
            line.fields = std::move(fields);
            TakeTracker(line);
            line.message = Joined(line.fields);
            line.ofSearch = IsOfSearch(line);
            if (line.message.starts_with("!!! ")) {
                line.kind = LineKind::Failure;
            }
            return line;
        }
    }
    line.message = line.text;
    line.fields = {line.text};
    return line;
}

} // namespace kestraboot::tools
