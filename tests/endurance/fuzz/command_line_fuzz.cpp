// The words of its command line that a boot executable receives.
#include "kestraboot/command_handler.h"
#include "tests/endurance/fuzz/command_line_model.h"
#include "tests/endurance/fuzz/fuzz.h"
#include "tests/endurance/fuzz/standard_output.h"
#include "tests/support/import_patch.h"

#include <gtest/gtest.h>

#include <shellapi.h>

namespace kestraboot::fuzz
{
namespace
{

/// In quotes or not, with the characters that the splitting treats specially.
std::wstring AnyWord(Random& random)
{
    static constexpr const wchar_t* kSwitches[] = {L"-default", L"-default", L"-install",  L"-uninstall",
                                                   L"/install", L"-defaul",  L"-default ", L"--install"};
    std::wstring word = random.Chance(50) ? random.OtherCase(random.Pick(kSwitches)) : random.Text();
    if (random.Chance(30)) {
        word = L'"' + word + (random.Chance(90) ? L"\"" : L"");
    }
    if (random.Chance(10)) {
        word.insert(random.Below(word.size() + 1),
                    random.Pick({L"\"\"", L"\"\"\"", L"\\\"", L"\\\\\"", L"\\\\", L"\"", L"\\\"\"",
                                 L"\"\"\"\""}));
    }
    return word;
}

std::wstring AnyBlanks(Random& random)
{
    return random.Pick({L" ", L" ", L" ", L"  ", L"\t", L" \t "});
}

std::wstring AnyLine(Random& random)
{
    static constexpr const wchar_t* kPrograms[] = {
        L"kestraboot.exe", L"\"C:\\Program Files\\kestraboot.exe\"",
        L"\"unclosed",     L"\"a\"b",
        L"a\"b c\"",       L"\\\"x",
        L"\"\"",           L""};
    std::wstring line = random.Chance(10) ? random.Text() : std::wstring(random.Pick(kPrograms));
    for (std::size_t i = random.Below(5); i > 0; --i) {
        line += AnyBlanks(random) + AnyWord(random);
    }
    return line + (random.Chance(20) ? AnyBlanks(random) : L"");
}

TEST(CommandLineFuzz, WordsAreThoseOfTheModel)
{
    std::wstring line;
    wchar_t** split = nullptr;
    const FAKE_IMPORT(GetCommandLineW) commandLine([&] {
        return line.data();
    });
    FAKE_IMPORT(CommandLineToArgvW)
    toWords([&](const wchar_t* asked, int* count) {
        return split = toWords.CallOriginal(asked, count);
    });
    FAKE_IMPORT(GlobalFree)
    release([&](HGLOBAL memory) -> HGLOBAL {
        split = memory == split ? nullptr : split;
        return release.CallOriginal(memory);
    });
    StandardOutput output;
    CKestraBootCommandHandler handler;
    Fuzz({.usual = 5'000}, [&](Random& random) {
        line = AnyLine(random);
        std::vector<std::wstring> words = {L"before"};

        output.During([&] {
            handler.ParseCommandLineParameter(words);
        });

        EXPECT_EQ(words.front(), L"before");
        words.erase(words.begin());
        EXPECT_EQ((ParsedWords{words, output.Taken()}), ModelOfParsing(line))
            << "line: " << testing::PrintToString(line);
        EXPECT_EQ(split, nullptr) << "not freed";
    });
}

} // namespace
} // namespace kestraboot::fuzz
