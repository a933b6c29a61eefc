#include "tools/ctl/options.h"

#include <gmock/gmock.h>

namespace kestraboot::tools
{
namespace
{

using testing::HasSubstr;
using testing::StartsWith;

TEST(CtlOptions, AreAllOffWithoutArguments)
{
    const CtlOptions options = ReadCtlOptions({});
    EXPECT_FALSE(options.check || options.json || options.noColour || options.help);
    EXPECT_EQ(options.notUnderstood, "");
}

TEST(CtlOptions, ComeInAnyOrder)
{
    const CtlOptions options = ReadCtlOptions({"--no-color", "--check", "--json"});
    EXPECT_TRUE(options.check && options.json && options.noColour);
    EXPECT_FALSE(options.help);
    EXPECT_EQ(options.notUnderstood, "");
}

TEST(CtlOptions, AcceptEveryUsualFormOfHelp)
{
    for (const char* const word : {"--help", "-h", "/?"}) {
        const CtlOptions options = ReadCtlOptions({word});
        EXPECT_TRUE(options.help) << word;
        EXPECT_EQ(options.notUnderstood, "") << word;
    }
}

TEST(CtlOptions, NameTheFirstWordThatIsUnknown)
{
    EXPECT_EQ(ReadCtlOptions({"--json", "--jsn", "x"}).notUnderstood, "--jsn");
    EXPECT_EQ(ReadCtlOptions({"applications"}).notUnderstood, "applications");
    EXPECT_EQ(ReadCtlOptions({"--json", "b\xC3\xBC"}).notUnderstood, "b\xC3\xBC");
    EXPECT_EQ(ReadCtlOptions({"--chec"}).notUnderstood, "--chec") << "options are compared whole";
    for (const char* const word : {"--json=maybe", "--check=1=2", "--", "-", "/"}) {
        EXPECT_EQ(ReadCtlOptions({word, "x"}).notUnderstood.empty(), false) << word;
    }
    EXPECT_EQ(ReadCtlOptions({""}).notUnderstood, "(nothing)");
}

TEST(CtlOptions, AreExplainedAfterTwoExamples)
{
    const std::string usage = CtlUsage();
    EXPECT_THAT(usage, StartsWith("usage: kestractl [--json] [--no-color]\n"));
    EXPECT_LT(usage.find("  kestractl --check  "), usage.find("Shows the compatible"));
    EXPECT_LT(usage.find("  kestractl --json >"), usage.find("Shows the compatible"));
    EXPECT_THAT(usage, HasSubstr("exit codes: 0 shown, 1 failed, 2 usage, 4 "));
}

} // namespace
} // namespace kestraboot::tools
