#include "tools/ctl/left_out.h"

#include <gmock/gmock.h>

namespace kestraboot::tools
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

ApplicationKey Complete()
{
    ApplicationKey key;
    key.path = L"SOFTWARE\\Corvane\\App\\Corvane Kestrafetch";
    key.commandPath = L"C:\\a.exe";
    key.proxyPath = L"C:\\boot.exe";
    key.commandExists = key.proxyExists = true;
    return key;
}

std::vector<std::string> Codes(const ApplicationKey& key)
{
    std::vector<std::string> codes;
    for (const Reason& reason : WhyLeftOut(key)) {
        codes.emplace_back(reason.code);
    }
    return codes;
}

TEST(LeftOut, HasNoReasonIfNothingIsWrong)
{
    EXPECT_THAT(Codes(Complete()), IsEmpty());
}

TEST(LeftOut, NamesMissingFilesAndValues)
{
    ApplicationKey key = Complete();
    key.commandExists = false;
    EXPECT_THAT(Codes(key), ElementsAre("no-application-file"));
    EXPECT_EQ(WhyLeftOut(key)[0].text, L"\"CmdLine\" names a file that does not exist: C:\\a.exe");
    key.commandPath.reset();
    EXPECT_THAT(Codes(key), ElementsAre("no-application-value"));
    EXPECT_EQ(WhyLeftOut(key)[0].text, L"\"CmdLine\" is missing");

    key = Complete();
    key.proxyExists = false;
    EXPECT_THAT(Codes(key), ElementsAre("no-proxy-file"));
    key.proxyPath = L"";
    EXPECT_THAT(Codes(key), ElementsAre("no-proxy-value"));
    EXPECT_EQ(WhyLeftOut(key)[0].text, L"\"ProxyPath\" is empty");
}

TEST(LeftOut, PointsAtQuotes)
{
    ApplicationKey key = Complete();
    key.commandPath = L"\"C:\\a.exe\"";
    key.commandExists = false;
    EXPECT_EQ(WhyLeftOut(key)[0].text, L"\"CmdLine\" names a file that does not exist: \"C:\\a.exe\" "
                                       L"(the quotes do not belong there)");
}

TEST(LeftOut, LetsTheUsersValueDecide)
{
    ApplicationKey key = Complete();
    key.autoLaunchOfMachine = 1;
    EXPECT_EQ(WhyLeftOut(key).at(0).text, L"\"AutoLaunchOnDeviceConnect\" is 1 on this machine");
    key.autoLaunchOfUser = 0;
    EXPECT_THAT(Codes(key), IsEmpty());
    key.autoLaunchOfUser = 1;
    EXPECT_EQ(WhyLeftOut(key).at(0).text, L"\"AutoLaunchOnDeviceConnect\" is 1 for this user");
    EXPECT_THAT(Codes(key), ElementsAre("kept-out"));
    key.autoLaunchOfUser = key.autoLaunchOfMachine = 2;
    EXPECT_THAT(Codes(key), IsEmpty()) << "only 1 excludes it";
}

TEST(LeftOut, KnowsTheKeysThatTheSearchDoesNotReach)
{
    ApplicationKey key = Complete();
    key.nameInOtherCase = key.belowAnother = key.behindLongName = true;
    EXPECT_THAT(Codes(key), ElementsAre("key-name-in-other-case", "below-another", "behind-long-name"));
}

TEST(LeftOut, ListsEveryFault)
{
    ApplicationKey key = Complete();
    key.commandExists = key.proxyExists = false;
    key.autoLaunchOfUser = 1;
    EXPECT_THAT(Codes(key), ElementsAre("no-application-file", "no-proxy-file", "kept-out"));
}

} // namespace
} // namespace kestraboot::tools
