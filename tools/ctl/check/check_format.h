// Shows the table of --check.
#pragma once

#include "tools/common/styled_text.h"
#include "tools/ctl/check/row.h"

#include <string>

namespace kestraboot::tools
{

/// With line ends of text files.
[[nodiscard]] StyledText FormatCheck(const Rows& rows);

/// One object, without a line end.
[[nodiscard]] std::string CheckJson(const Rows& rows);

/// The number of rows with that verdict.
[[nodiscard]] std::size_t Count(const Rows& rows, Verdict verdict);

} // namespace kestraboot::tools
