// Finds the arrival that a start line is about.
#pragma once

#include "tools/trace/arrivals/arrival.h"
#include "tools/trace/lines/start_line.h"

#include <string_view>

namespace kestraboot::tools
{

[[nodiscard]] bool Names(const StartLine& start, const Arrival& arrival);

/// Whether the program that the line names wrote it, or may have written it: applications may trace
/// the command line with which they were started.
[[nodiscard]] bool MayBeOfTheStarted(const StartLine& start, std::string_view writer);

} // namespace kestraboot::tools
