#pragma once

#include "tools/common/exit_code.h"
#include "tools/trace/options.h"
#include "tools/trace/stop.h"

namespace kestraboot::tools
{

/// Shows recordings, one after another, as if their lines came now.
[[nodiscard]] ExitCode ShowRecordings(const TraceOptions& options, const Stop& stop);

} // namespace kestraboot::tools
