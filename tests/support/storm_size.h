#pragma once

#include <cstdlib>
#include <string_view>

namespace kestraboot::tests
{

/// The number of rounds of a storm: `usual` in the test command, `full` if KESTRABOOT_STORM=full is in
/// the environment.
[[nodiscard]] inline int StormSize(int usual, int full)
{
    const char* const asked = std::getenv("KESTRABOOT_STORM");
    return asked != nullptr && std::string_view(asked) == "full" ? full : usual;
}

} // namespace kestraboot::tests
