#include "tools/trace/lines/tag_filter.h"

#include <algorithm>

namespace kestraboot::tools
{
namespace
{

std::string Bare(std::string_view tag)
{
    std::string bare;
    for (const char character : tag) {
        if (character != '<' && character != '>' && character != '*') {
            const bool upper = character >= 'A' && character <= 'Z';
            bare += upper ? static_cast<char>(character - 'A' + 'a') : character;
        }
    }
    return bare;
}

} // namespace

TagFilter::TagFilter(const std::vector<std::string>& wanted)
{
    for (const std::string& tag : wanted) {
        tags.push_back(Bare(tag));
    }
}

bool TagFilter::Passes(std::string_view component, std::string_view tracker) const
{
    const auto wanted = [&](std::string_view tag) {
        return !tag.empty() && std::ranges::find(tags, Bare(tag)) != tags.end();
    };
    return tags.empty() || wanted(component) || wanted(tracker);
}

} // namespace kestraboot::tools
