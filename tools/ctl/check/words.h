// Pieces of sentences.
#pragma once

#include "tools/ctl/check/facts.h"

#include <string>

namespace kestraboot::tools
{

[[nodiscard]] inline std::wstring InQuotes(const std::wstring& text)
{
    return L"\"" + text + L"\"";
}

[[nodiscard]] inline std::wstring VersionText(const FileVersion& version)
{
    return version ? L"version " + *version : std::wstring(L"no version resource");
}

/// "a", "a and b", "a, b and c".
[[nodiscard]] std::wstring AndList(const std::vector<std::wstring>& words);

[[nodiscard]] std::wstring Wide(const std::string& ascii);

[[nodiscard]] bool SameIgnoringCase(const std::wstring& one, const std::wstring& other);

} // namespace kestraboot::tools
