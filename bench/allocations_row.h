#pragma once

#include "bench/request.h"

namespace kestraboot::bench
{

/// Counts what each piece of work takes from operator new; a line "allocations,WHAT,NUMBER" for each.
void CountAllocations(const Request& request);

} // namespace kestraboot::bench
