// How a command line becomes words, said a second time and as plainly as possible.
#pragma once

#include <string>
#include <vector>

namespace kestraboot::fuzz
{

/// As Windows splits it; the program's own name comes first, and is there for an empty line too.
[[nodiscard]] std::vector<std::wstring> SplitCommandLine(const std::wstring& line);

struct ParsedWords {
    std::vector<std::wstring> words;
    std::string console;

    friend bool operator==(const ParsedWords&, const ParsedWords&) = default;
};

void PrintTo(const ParsedWords& parsed, std::ostream* out);

/// What a boot executable is told of its command line.
[[nodiscard]] ParsedWords ModelOfParsing(const std::wstring& line);

} // namespace kestraboot::fuzz
