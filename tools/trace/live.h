#pragma once

#include "tools/common/exit_code.h"
#include "tools/trace/options.h"
#include "tools/trace/stop.h"

namespace kestraboot::tools
{

/// Shows the debug output of this session as it comes.
[[nodiscard]] ExitCode ShowLive(const TraceOptions& options, const Stop& stop);

} // namespace kestraboot::tools
