#pragma once

#include "bench/request.h"

namespace kestraboot::bench
{

/// Loads the list of applications; the size is their number, "+", and the number of other keys.
void CompeteInLoading(const Request& request);

} // namespace kestraboot::bench
