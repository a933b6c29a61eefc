#pragma once

#include "tools/ctl/report.h"

namespace kestraboot::tools
{

/// Makes the report on a copy of the keys; the registry is unchanged afterwards. Throws
/// std::exception if that fails.
[[nodiscard]] Report Gather();

} // namespace kestraboot::tools
