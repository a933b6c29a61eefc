#pragma once

#include "bench/request.h"

namespace kestraboot::bench
{

/// From the look that finds a card to the application that runs, with a real start.
void CompeteOnRoad(const Request& request);

/// The same where the start itself takes no time.
void CompeteOnRoadWithoutStart(const Request& request);

} // namespace kestraboot::bench
