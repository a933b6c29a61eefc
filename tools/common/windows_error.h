// The texts of Windows' error numbers.
#pragma once

#include <string>

namespace kestraboot::tools
{

/// "Access denied. (error 5)", in UTF-8; "error 5" if Windows has no text for it.
[[nodiscard]] std::string WindowsErrorText(unsigned long error);

} // namespace kestraboot::tools
