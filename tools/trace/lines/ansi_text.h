#pragma once

#include <string>
#include <string_view>

namespace kestraboot::tools
{

/// From the ANSI code page, in which Windows passes debug lines, to UTF-8.
[[nodiscard]] std::string FromAnsi(std::string_view text);

} // namespace kestraboot::tools
