#pragma once

#include "bench/request.h"

namespace kestraboot::bench
{

/// Loading the list of applications; the size is their number, "+", and that of other keys.
void CompeteInLoading(const Request& request);

} // namespace kestraboot::bench
