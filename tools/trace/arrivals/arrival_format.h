// Shows a verdict.
#pragma once

#include "tools/common/styled_text.h"
#include "tools/trace/arrivals/arrival.h"

#include <string>
#include <vector>

namespace kestraboot::tools
{

/// Several lines, without line ends.
[[nodiscard]] std::vector<StyledText> FormatArrival(const Arrival& arrival);
[[nodiscard]] std::string ArrivalJson(const Arrival& arrival);

} // namespace kestraboot::tools
