// Shows one debug line.
#pragma once

#include "tools/common/styled_text.h"
#include "tools/trace/lines/seen_line.h"
#include "tools/trace/lines/trace_line.h"

#include <cstdint>
#include <string>

namespace kestraboot::tools
{

/// Time, process name and number in columns of fixed width: the rest begins at column kLineColumn.
inline constexpr std::size_t kLineColumn = 42;
[[nodiscard]] StyledText LineHead(const TimeStamp& time, const std::string& processName,
                                  std::uint32_t processId);

/// Characters that would move a console's cursor become blanks.
[[nodiscard]] std::string Printable(std::string text);

/// One line, printable, without a line end.
[[nodiscard]] StyledText FormatLine(const SeenLine& seen, const TraceLine& line);
[[nodiscard]] std::string LineJson(const SeenLine& seen, const TraceLine& line);

/// Shown in place of lines that came faster than they could be shown.
[[nodiscard]] StyledText FormatLost(const TimeStamp& time, std::uint64_t lines);
[[nodiscard]] std::string LostJson(const TimeStamp& time, std::uint64_t lines);

} // namespace kestraboot::tools
