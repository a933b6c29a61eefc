#include "tools/trace/lines/line_filter.h"

#include <algorithm>

namespace kestraboot::tools
{
namespace
{

constexpr std::string_view kOfOnePlugin = "plugin:";
constexpr std::string_view kExtension = ".exe";

char Lower(char character) noexcept
{
    const bool upper = character >= 'A' && character <= 'Z';
    return upper ? static_cast<char>(character - 'A' + 'a') : character;
}

std::string Lowered(std::string_view text)
{
    std::string lowered(text);
    std::ranges::transform(lowered, lowered.begin(), Lower);
    return lowered;
}

std::string Bare(std::string_view tag)
{
    std::string bare = Lowered(tag);
    std::erase_if(bare, [](char character) {
        return character == '<' || character == '>' || character == '*';
    });
    return bare;
}

std::string WithoutExtension(std::string name)
{
    if (name.ends_with(kExtension)) {
        name.resize(name.size() - kExtension.size());
    }
    return name;
}

} // namespace

bool IsTag(std::string_view tag)
{
    const std::string bare = Bare(tag);
    return std::ranges::find(kTags, bare, Lowered) != std::end(kTags) ||
           (bare.starts_with(kOfOnePlugin) && bare.size() > kOfOnePlugin.size());
}

LineFilter::LineFilter(const Wanted& asked) : text(Lowered(asked.text))
{
    for (const std::string& tag : asked.tags) {
        tags.push_back(Bare(tag));
    }
    for (const std::string& process : asked.processes) {
        processes.push_back(WithoutExtension(Lowered(process)));
    }
}

bool LineFilter::PassesTags(std::string_view component, std::string_view tracker,
                            std::span<const std::string> plugins) const
{
    const auto wanted = [&](const std::string& tag) {
        return !tag.empty() && std::ranges::find(tags, tag) != tags.end();
    };
    return tags.empty() || wanted(Bare(component)) || wanted(Bare(tracker)) ||
           std::ranges::any_of(plugins, [&](const std::string& plugin) {
               return wanted(std::string(kOfOnePlugin) + Bare(plugin));
           });
}

bool LineFilter::PassesTags(const TraceLine& line) const
{
    if (line.ofPlugin) {
        return PassesTags(line.component, "Plugin", {&line.tracker, 1});
    }
    return PassesTags(line.component, line.ofSearch ? "VolumeTracker" : line.tracker, {});
}

bool LineFilter::PassesProcess(std::uint32_t id, std::string_view name) const
{
    return processes.empty() || std::ranges::any_of(processes, [&](const std::string& process) {
               return process == std::to_string(id) || process == WithoutExtension(Lowered(name));
           });
}

bool LineFilter::PassesText(std::string_view shown) const
{
    const auto same = [](char seen, char wanted) {
        return Lower(seen) == wanted;
    };
    return text.empty() ||
           std::search(shown.begin(), shown.end(), text.begin(), text.end(), same) != shown.end();
}

} // namespace kestraboot::tools
