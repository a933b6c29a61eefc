// Shows the report.
#pragma once

#include "tools/common/styled_text.h"
#include "tools/ctl/report.h"

#include <string>

namespace kestraboot::tools
{

/// With line ends of text files.
[[nodiscard]] StyledText FormatReport(const Report& report);

/// One object, without a line end.
[[nodiscard]] std::string ReportJson(const Report& report);

} // namespace kestraboot::tools
