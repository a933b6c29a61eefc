#pragma once

#include "tools/ctl/report.h"

namespace kestraboot::tools
{

/// Makes the report on a copy of the keys; the registry is the same afterwards. Throws std::exception
/// where that cannot be done.
[[nodiscard]] Report Gather();

} // namespace kestraboot::tools
