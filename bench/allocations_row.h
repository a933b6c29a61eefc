#pragma once

#include "bench/request.h"

namespace kestraboot::bench
{

/// Counts the allocations of each operation with operator new; prints "allocations,NAME,NUMBER" for
/// each.
void CountAllocations(const Request& request);

} // namespace kestraboot::bench
