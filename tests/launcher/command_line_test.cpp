#include "kestraboot/command_handler.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/console_recorder.h"
#include "tests/support/import_patch.h"

#include <gtest/gtest.h>

#include <shellapi.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

using Words = std::vector<std::wstring>;

constexpr const char* kUsage = "\n !!! Please follow the syntax:"
                               "\n [Qualified path]\\kestraboot.exe -default [app name] [yes | no] \n";

/// The process's own command line, and the life of the words into which Windows splits it.
struct CommandLine : testing::Test {
    struct Parsed {
        Words words;
        std::string console;
    };
    Parsed Parse(const std::wstring& line)
    {
        text = line;
        Words words;
        ConsoleRecorder console;
        handler.ParseCommandLineParameter(words);
        Parsed parsed = {words, console.Text()};
        EXPECT_EQ(split, nullptr) << "not freed";
        return parsed;
    }
    Words WordsOf(const std::wstring& line)
    {
        const Parsed parsed = Parse(line);
        EXPECT_EQ(parsed.console, "");
        return parsed.words;
    }

    std::wstring text;
    bool splitFails = false;
    wchar_t** split = nullptr; ///< the product owns it until it frees it
    FAKE_IMPORT(GetCommandLineW)
    commandLine{[this] {
        return text.data();
    }};
    FAKE_IMPORT(CommandLineToArgvW)
    toWords{[this](const wchar_t* line, int* count) -> wchar_t** {
        EXPECT_EQ(line, text.data());
        if (splitFails) {
            *count = 1; // Windows promises no number with a failure
            return nullptr;
        }
        return split = toWords.CallOriginal(line, count);
    }};
    FAKE_IMPORT(GlobalFree)
    release{[this](HGLOBAL memory) -> HGLOBAL {
        EXPECT_EQ(memory, split);
        split = nullptr;
        return release.CallOriginal(memory);
    }};
    CKestraBootCommandHandler handler;
};

TEST_F(CommandLine, WithoutArgumentsInstalls)
{
    EXPECT_EQ(WordsOf(L"kestraboot.exe"), Words{L"-install"});
    EXPECT_EQ(WordsOf(L"\"C:\\Program Files\\k\\kestraboot.exe\"   "), Words{L"-install"});
}

TEST_F(CommandLine, WithASwitchKeepsItAsTyped)
{
    EXPECT_EQ(WordsOf(L"k -install"), Words{L"-install"});
    EXPECT_EQ(WordsOf(L"k -INSTALL"), Words{L"-INSTALL"});
    EXPECT_EQ(WordsOf(L"k \"-uninstall\""), Words{L"-uninstall"});
    EXPECT_EQ(WordsOf(L"k -UnInstall"), Words{L"-UnInstall"});
}

TEST_F(CommandLine, IgnoresWhatFollowsInstallAndUninstall)
{
    EXPECT_EQ(WordsOf(L"k -install -default a yes"), Words{L"-install"});
    EXPECT_EQ(WordsOf(L"k -uninstall now"), Words{L"-uninstall"});
}

TEST_F(CommandLine, WithADefaultGivesThreeWordsAsTyped)
{
    EXPECT_EQ(WordsOf(L"k -Default MyApp YES"), (Words{L"-Default", L"MyApp", L"YES"}));
    EXPECT_EQ(WordsOf(L"k -default \"My App\" maybe"), (Words{L"-default", L"My App", L"maybe"}));
    EXPECT_EQ(WordsOf(L"k -default \"\" \"\""), (Words{L"-default", L"", L""}));
    EXPECT_EQ(WordsOf(L"k -default \x5199\x771F\xD83D\xDE00 n\xF6"),
              (Words{L"-default", L"\x5199\x771F\xD83D\xDE00", L"n\xF6"}));
    EXPECT_EQ(WordsOf(L"k -default a\xD800 \"b\\\"c\\\\\""),
              (Words{L"-default", L"a\xD800", L"b\"c\\"}));
}

TEST_F(CommandLine, WithAWrongNumberOfWordsAfterDefaultPrintsTheUsage)
{
    for (const wchar_t* const line : {L"k -default", L"k -default MyApp", L"k -DEFAULT MyApp yes extra",
                                      L"k -default a b c d e f"}) {
        const Parsed parsed = Parse(line);
        EXPECT_EQ(parsed.words, Words{}) << line;
        EXPECT_EQ(parsed.console, kUsage) << line;
    }
}

TEST_F(CommandLine, OfAnythingElseGivesNothing)
{
    for (const wchar_t* const line :
         {L"k /install", L"k install", L"k --install", L"k -installed", L"k -inst", L"k \"\"",
          L"k \" -install\"", L"k MyApp -install", L"k -default2 a b"}) {
        EXPECT_EQ(WordsOf(line), Words{}) << line;
    }
}

TEST_F(CommandLine, OfGreatLengthIsReadWhole)
{
    for (const std::size_t length : {259U, 260U, 261U, 32767U}) {
        const std::wstring name(length, L'n');
        EXPECT_EQ(WordsOf(L"k -default " + name + L" yes"), (Words{L"-default", name, L"yes"}))
            << length;
    }
}

TEST_F(CommandLine, IsAppendedToTheCallersList)
{
    text = L"k -default a yes";
    Words words = {L"before"};
    handler.ParseCommandLineParameter(words);
    handler.ParseCommandLineParameter(words);
    EXPECT_EQ(words, (Words{L"before", L"-default", L"a", L"yes", L"-default", L"a", L"yes"}));
    EXPECT_EQ(release.Calls(), 2);
}

TEST_F(CommandLine, ThatCannotBeSplitGivesNothing)
{
    text = L"k -default a yes";
    Words words = {L"before"};
    splitFails = true;
    ConsoleRecorder console;
    handler.ParseCommandLineParameter(words);
    EXPECT_EQ(console.Text(), "");
    EXPECT_EQ(words, Words{L"before"});
    EXPECT_EQ(release.Calls(), 0);
}

TEST_F(CommandLine, IsFreedWhenMemoryRunsOut)
{
    text = L"k -default \"an application with a long name\" \"a value that is as long\"";
    Words words;
    EXPECT_GT(ForEveryAllocation(
                  [&] {
                      words.clear();
                      words.shrink_to_fit();
                      handler.ParseCommandLineParameter(words);
                  },
                  [&](bool threw) {
                      EXPECT_TRUE(threw);
                      EXPECT_TRUE(words.empty());
                      EXPECT_EQ(release.Calls(), toWords.Calls());
                  }),
              3);
    EXPECT_EQ(words.size(), 3U);
}

} // namespace
} // namespace kestraboot
