// Which arrival a start line is about.
#pragma once

#include "tools/trace/arrival.h"
#include "tools/trace/start_line.h"

namespace kestraboot::tools
{

[[nodiscard]] bool Names(const StartLine& start, const Arrival& arrival);

} // namespace kestraboot::tools
