#include "tests/endurance/fuzz/command_line_model.h"

#include "tests/endurance/fuzz/hive.h"

#include <gmock/gmock.h>

namespace kestraboot::fuzz
{
namespace
{

bool Blank(wchar_t character)
{
    return character == L' ' || character == L'\t';
}

/// The program's name knows quotes but no escapes.
std::size_t EndOfProgram(const std::wstring& line)
{
    if (!line.empty() && line[0] == L'"') {
        const std::size_t quote = line.find(L'"', 1);
        return quote == std::wstring::npos ? line.size() : quote + 1;
    }
    return std::min(line.find_first_of(L" \t"), line.size());
}

/// Takes the word at `at`, which is no blank, and moves `at` behind it.
std::wstring TakeWord(const std::wstring& line, std::size_t& at)
{
    std::wstring word;
    bool quoted = false;
    while (at < line.size() && (quoted || !Blank(line[at]))) {
        std::size_t backslashes = 0;
        for (; at < line.size() && line[at] == L'\\'; ++at) {
            ++backslashes;
        }
        if (at == line.size() || line[at] != L'"') {
            word.append(backslashes, L'\\'); // they are literal
            if (backslashes == 0) {
                word += line[at++];
            }
            continue;
        }
        word.append(backslashes / 2, L'\\');
        int open = quoted ? 1 : 0;
        if (backslashes % 2 != 0) {
            word += L'"';
        } else {
            ++open;
        }
        // The second quote of a run closes, the third is a quote and closes too.
        for (++at; at < line.size() && line[at] == L'"'; ++at) {
            if (++open == 3) {
                word += L'"';
                open = 0;
            }
        }
        quoted = open == 1;
    }
    return word;
}

} // namespace

std::vector<std::wstring> SplitCommandLine(const std::wstring& line)
{
    std::vector<std::wstring> words = {L"the program"};
    std::size_t at = EndOfProgram(line);
    for (;;) {
        while (at < line.size() && Blank(line[at])) {
            ++at;
        }
        if (at >= line.size()) {
            return words;
        }
        words.push_back(TakeWord(line, at));
    }
}

void PrintTo(const ParsedWords& parsed, std::ostream* out)
{
    *out << testing::PrintToString(parsed.words) << ", console " << parsed.console;
}

ParsedWords ModelOfParsing(const std::wstring& line)
{
    const std::vector<std::wstring> words = SplitCommandLine(line);
    if (words.size() == 1) {
        return {{L"-install"}, {}};
    }
    if (SameText(words[1], L"-install") || SameText(words[1], L"-uninstall")) {
        return {{words[1]}, {}};
    }
    if (!SameText(words[1], L"-default")) {
        return {};
    }
    if (words.size() != 4) {
        return {{},
                "\n !!! Please follow the syntax:"
                "\n [Qualified path]\\kestraboot.exe -default [app name] [yes | no] \n"};
    }
    return {{words[1], words[2], words[3]}, {}};
}

} // namespace kestraboot::fuzz
