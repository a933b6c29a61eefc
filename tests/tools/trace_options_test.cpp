#include "tools/trace/options.h"

#include <gmock/gmock.h>

namespace kestraboot::tools
{
namespace
{

using testing::ElementsAre;

TEST(TraceOptions, ShowEverythingWithoutALimitByDefault)
{
    std::string wrong;
    const auto options = ParseTraceOptions({}, wrong);
    ASSERT_TRUE(options);
    EXPECT_EQ(options->seconds, 0U);
    EXPECT_TRUE(options->colour);
    EXPECT_FALSE(options->arrivals || options->json || options->help);
    EXPECT_TRUE(options->wanted.tags.empty());
    EXPECT_TRUE(options->file.empty());
}

TEST(TraceOptions, ComeInAnyOrder)
{
    std::string wrong;
    const auto options =
        ParseTraceOptions({L"--only", L"VolumeTracker", L"30", L"--json", L"--only", L"<KestraBoot>",
                           L"--arrivals", L"--file", L"C:\\a b.log", L"--no-color"},
                          wrong);
    ASSERT_TRUE(options) << wrong;
    EXPECT_EQ(options->seconds, 30U);
    EXPECT_TRUE(options->arrivals);
    EXPECT_TRUE(options->json);
    EXPECT_FALSE(options->colour);
    EXPECT_THAT(options->wanted.tags, ElementsAre("VolumeTracker", "<KestraBoot>"));
    EXPECT_EQ(options->file, L"C:\\a b.log");
}

TEST(TraceOptions, AreRefusedWithTheReason)
{
    const std::pair<std::vector<std::wstring>, const char*> refused[] = {
        {{L"--colour"}, "--colour"},
        {{L"0"}, "0"},
        {{L"-5"}, "-5"},
        {{L"5s"}, "5s"},
        {{L""}, "seconds"},
        {{L"1000000000"}, "1000000000"},
        {{L"5", L"6"}, "6"},
        {{L"--only"}, "--only"},
        {{L"--only", L""}, "--only: needs a value"},
        {{L"--only", L"VolumeTraker"},
         "there is no tag VolumeTraker; there are DeviceConnect, KestraBoot, "},
        {{L"--file", L"--json"}, "--file: needs a value"},
        {{L"--file", L"a", L"--file", L"b"}, "--file"},
        {{L"--process", L""}, "--process: needs a value"},
        {{L"--match"}, "--match"},
        {{L"--rotate", L"10M"}, "--rotate requires --file"},
        {{L"--file", L"a", L"--rotate", L"4095"}, "--rotate: less than 4096 bytes"},
        {{L"--file", L"a", L"--rotate", L"much"}, "much"},
        {{L"--file", L"a", L"--keep", L"2"}, "--keep requires --rotate"},
        {{L"--file", L"a", L"--rotate", L"1M", L"--keep", L"0"}, "0"},
        {{L"--from", L"a", L"5"}, "excludes"},
    };
    for (const auto& [words, reason] : refused) {
        std::string wrong;
        EXPECT_FALSE(ParseTraceOptions(words, wrong)) << reason;
        EXPECT_THAT(wrong, testing::HasSubstr(reason));
    }
}

TEST(TraceOptions, MayNameFilesOfEveryLanguage)
{
    std::string wrong;
    const auto options =
        ParseTraceOptions({L"--file", L"C:\a \u00e9\u20ac.log", L"--rotate", L"10M", L"--keep", L"3",
                           L"--from", L"one", L"--from", L"/two/\u0416"},
                          wrong);
    ASSERT_TRUE(options) << wrong;
    EXPECT_EQ(options->file, L"C:\a \u00e9\u20ac.log");
    EXPECT_EQ(options->rotate, 10U * 1024 * 1024);
    EXPECT_EQ(options->keep, 3U);
    EXPECT_THAT(options->from, ElementsAre(L"one", L"/two/\u0416"));
}

TEST(TraceOptions, NameProcessesAndATextToFind)
{
    std::string wrong;
    const auto options = ParseTraceOptions(
        {L"--process", L"556", L"--match", L"IMG_", L"--process", L"a b.exe", L"7"}, wrong);
    ASSERT_TRUE(options) << wrong;
    EXPECT_THAT(options->wanted.processes, ElementsAre("556", "a b.exe"));
    EXPECT_EQ(options->wanted.text, "IMG_");
    EXPECT_EQ(options->seconds, 7U);
}

TEST(TraceOptions, OfferHelp)
{
    for (const wchar_t* const word : {L"--help", L"-h", L"/?"}) {
        std::string wrong;
        const auto options = ParseTraceOptions({word}, wrong);
        ASSERT_TRUE(options);
        EXPECT_TRUE(options->help);
    }
}

TEST(TraceOptions, ShowTwoExamplesFirst)
{
    const std::string help = TraceHelp();
    EXPECT_THAT(help, testing::StartsWith("examples:\n  kestratrace --arrivals "));
    EXPECT_THAT(help, testing::HasSubstr("\n  kestratrace --from trace.log "));
    EXPECT_LT(help.find("--from trace.log"), help.find("usage: kestratrace "));
    for (std::size_t at = 0, end = 0; (end = help.find('\n', at)) != std::string::npos; at = end + 1) {
        EXPECT_LE(end - at, 100U) << help.substr(at, end - at);
    }
}

} // namespace
} // namespace kestraboot::tools
