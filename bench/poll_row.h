#pragma once

#include "bench/request.h"

namespace kestraboot::bench
{

/// A look of the volume tracker that finds nothing new; the size is the number of removable drives.
void CompeteInPolling(const Request& request);

} // namespace kestraboot::bench
