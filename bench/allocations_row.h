#pragma once

#include "bench/request.h"

namespace kestraboot::bench
{

/// Counts the calls of operator new for each operation; prints "allocations,NAME,NUMBER" for each.
void CountAllocations(const Request& request);

} // namespace kestraboot::bench
