// Converts UTF-16, which Windows uses, to UTF-8, which files and JSON use.
#pragma once

#include <string>
#include <string_view>

namespace kestraboot::tools
{

/// A surrogate without its pair becomes U+FFFD: the result is always valid.
[[nodiscard]] std::string ToUtf8(std::wstring_view text);

} // namespace kestraboot::tools
