#pragma once

#include "bench/request.h"

namespace kestraboot::bench
{

/// From the scan that detects a card to the running application, with a real start.
void CompeteOnRoad(const Request& request);

/// The same with a start that takes no time.
void CompeteOnRoadWithoutStart(const Request& request);

} // namespace kestraboot::bench
