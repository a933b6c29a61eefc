#pragma once

#include <cstdlib>
#include <string_view>

namespace kestraboot::tests
{

/// How often a storm blows: `usual` in the test command, `full` where KESTRABOOT_STORM=full is in the
/// environment.
[[nodiscard]] inline int StormSize(int usual, int full)
{
    const char* const asked = std::getenv("KESTRABOOT_STORM");
    return asked != nullptr && std::string_view(asked) == "full" ? full : usual;
}

} // namespace kestraboot::tests
