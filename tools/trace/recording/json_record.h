// A line of kestratrace's own JSON, read back.
#pragma once

#include "tools/trace/recording/recorded_lines.h"

#include <string_view>

namespace kestraboot::tools
{

/// A line or a loss, of this version's schema or of none; an arrival or anything else is NotRecorded.
[[nodiscard]] RecordedLine ReadJsonRecord(std::string_view text);

} // namespace kestraboot::tools
