// UTF-16, as Windows hands it out, to UTF-8, as files and JSON hold it.
#pragma once

#include <string>
#include <string_view>

namespace kestraboot::tools
{

/// A surrogate that stands alone becomes U+FFFD: the result is always valid.
[[nodiscard]] std::string ToUtf8(std::wstring_view text);

} // namespace kestraboot::tools
