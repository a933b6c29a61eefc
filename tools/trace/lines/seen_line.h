// One debug line with its time and process.
#pragma once

#include "tools/trace/lines/time_stamp.h"

#include <cstdint>
#include <string>

namespace kestraboot::tools
{

struct SeenLine {
    TimeStamp time;
    std::uint32_t processId = 0;
    std::string processName; ///< the file's name, "kestraboot.exe"; "?" if it is not available
    std::string text;        ///< UTF-8, line end included if the writer sent one
};

} // namespace kestraboot::tools
