// One debug line as copied from the channel, not decoded yet.
#pragma once

#include <cstdint>
#include <string>

namespace kestraboot::tools
{

struct RawLine {
    std::int64_t utcMilliseconds = 0; ///< see TimeStamp
    std::int64_t upMilliseconds = 0;
    std::uint32_t processId = 0;
    std::string processName;
    std::string text; ///< in the ANSI code page
};

} // namespace kestraboot::tools
