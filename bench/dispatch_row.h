#pragma once

#include "bench/request.h"

namespace kestraboot::bench
{

/// Reports to the host's callback; the size is the number of reporting threads.
void CompeteInDispatch(const Request& request);

} // namespace kestraboot::bench
