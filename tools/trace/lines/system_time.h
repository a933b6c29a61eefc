#pragma once

#include "tools/trace/lines/time_stamp.h"

namespace kestraboot::tools
{

/// Of a clock that nobody sets.
[[nodiscard]] std::int64_t UpMilliseconds();

[[nodiscard]] TimeStamp Now();

} // namespace kestraboot::tools
