// The splitting of a command line into words, written a second time and as plainly as possible.
#pragma once

#include <string>
#include <vector>

namespace kestraboot::fuzz
{

/// As Windows splits it; the program's own name comes first, and exists for an empty line too.
[[nodiscard]] std::vector<std::wstring> SplitCommandLine(const std::wstring& line);

struct ParsedWords {
    std::vector<std::wstring> words;
    std::string console;

    friend bool operator==(const ParsedWords&, const ParsedWords&) = default;
};

void PrintTo(const ParsedWords& parsed, std::ostream* out);

/// The facts about its command line that a boot executable receives.
[[nodiscard]] ParsedWords ModelOfParsing(const std::wstring& line);

} // namespace kestraboot::fuzz
