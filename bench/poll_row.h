#pragma once

#include "bench/request.h"

namespace kestraboot::bench
{

/// A poll of the volume tracker that detects nothing new; the size is the number of removable drives.
void CompeteInPolling(const Request& request);

} // namespace kestraboot::bench
