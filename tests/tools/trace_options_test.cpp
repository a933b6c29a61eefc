#include "tools/trace/options.h"

#include <gmock/gmock.h>

namespace kestraboot::tools
{
namespace
{

using testing::ElementsAre;

TEST(TraceOptions, ShowEverythingForEverByDefault)
{
    std::string wrong;
    const auto options = ParseTraceOptions({}, wrong);
    ASSERT_TRUE(options);
    EXPECT_EQ(options->seconds, 0U);
    EXPECT_TRUE(options->colour);
    EXPECT_FALSE(options->arrivals || options->json || options->help);
    EXPECT_TRUE(options->only.empty());
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
    EXPECT_THAT(options->only, ElementsAre("VolumeTracker", "<KestraBoot>"));
    EXPECT_EQ(options->file, L"C:\\a b.log");
}

TEST(TraceOptions, AreRefusedWithTheReason)
{
    const std::pair<std::vector<std::wstring>, const char*> refused[] = {
        {{L"--colour"}, "not understood: --colour"},
        {{L"0"}, "not understood: 0"},
        {{L"-5"}, "not understood: -5"},
        {{L"5s"}, "not understood: 5s"},
        {{L""}, "not understood: "},
        {{L"1000000000"}, "not understood: 1000000000"},
        {{L"5", L"6"}, "not understood: 6"},
        {{L"--only"}, "--only needs a value"},
        {{L"--only", L""}, "--only needs a value"},
        {{L"--file", L"--json"}, "--file needs a value"},
    };
    for (const auto& [words, reason] : refused) {
        std::string wrong;
        EXPECT_FALSE(ParseTraceOptions(words, wrong)) << reason;
        EXPECT_EQ(wrong, reason);
    }
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

} // namespace
} // namespace kestraboot::tools
