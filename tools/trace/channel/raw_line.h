// One debug line as it was copied from the channel, before anything is made of it.
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
