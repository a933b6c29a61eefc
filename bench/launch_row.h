#pragma once

#include "bench/request.h"

namespace kestraboot::bench
{

/// Composes the command line of an application; nothing is started, and the trace costs nothing.
void CompeteInComposing(const Request& request);

} // namespace kestraboot::bench
