// Which lines are shown, by the tags of component and tracker.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kestraboot::tools
{

class TagFilter
{
public:
    /// Tags may come as they stand in a line ("<***DeviceConnect***>") or bare; case does not matter.
    /// Without any, everything passes.
    explicit TagFilter(const std::vector<std::string>& wanted);

    /// One of the two is enough.
    [[nodiscard]] bool Passes(std::string_view component, std::string_view tracker) const;

private:
    std::vector<std::string> tags;
};

} // namespace kestraboot::tools
