// A process that really ends because no compatible application is left, whoever called.
#include "kestraboot/command_handler.h"
#include "tests/support/child_test.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

void ExpectEndWithTwoLines(const ChildEnd& end)
{
    EXPECT_EQ(end.exitCode, 0UL);
    EXPECT_EQ(
        end.traceLines,
        (std::vector<std::wstring>{
            L"<KestraBoot><!!! No Kestra Compatible application found. This situation should be "
            L"avoided.>",
            L"<KestraBoot><Deleting run key. Auto run is going to discontinue from now onwards.>"}));
}

std::wstring word = L"x"; // for arguments by reference

// Each of these ends its process, so none runs in this one: the tests at the end of this file run them,
// every one, in child processes.
TEST(ChildOfNoApplication, DISABLED_MaintainsTheOrder)
{
    CallInChild([] {
        CKestraBootInformationHandler().MaintainOrder();
    });
}

TEST(ChildOfNoApplication, DISABLED_LaunchesTheDefault)
{
    CallInChild([] {
        CKestraBootCommandHandler().LaunchDefaultKestra(word, word);
    });
}

TEST(ChildOfNoApplication, DISABLED_LaunchesItsOwn)
{
    CallInChild([] {
        CKestraBootCommandHandler().LaunchOwnKestra(word, word, word);
    });
}

TEST(ChildOfNoApplication, DISABLED_SetsADefault)
{
    CallInChild([] {
        static_cast<void>(CKestraBootCommandHandler().SetApplicationDefaultStatus(word, word));
    });
}

TEST(ChildOfNoApplication, DISABLED_AsksForItsLaunchStatus)
{
    CallInChild([] {
        static_cast<void>(CKestraBootInformationHandler().GetKestraLaunchStatus());
    });
}

TEST(ChildOfNoApplication, DISABLED_SetsItsLaunchStatus)
{
    CallInChild([] {
        static_cast<void>(CKestraBootInformationHandler().SetKestraLaunchStatus(1));
    });
}

TEST(ChildOfNoApplication, DISABLED_AsksForItsLocale)
{
    CallInChild([] {
        static_cast<void>(CKestraBootInformationHandler().GetKestraLocaleString(word));
    });
}

TEST(ChildOfNoApplication, DISABLED_Loads)
{
    CallInChild([] {
        CKestraBootInformationHandler().LoadInformation();
    });
}

struct WithoutAnApplication : testing::TestWithParam<const char*> {
};

TEST_P(WithoutAnApplication, TheProcessEndsWithCode0AfterTwoLines)
{
    ExpectEndWithTwoLines(RunChildTest(std::string("ChildOfNoApplication.DISABLED_") + GetParam()));
}

INSTANTIATE_TEST_SUITE_P(, WithoutAnApplication,
                         testing::Values("MaintainsTheOrder", "LaunchesTheDefault", "LaunchesItsOwn",
                                         "SetsADefault", "AsksForItsLaunchStatus", "SetsItsLaunchStatus",
                                         "AsksForItsLocale"),
                         [](const auto& instance) {
                             return std::string(instance.param);
                         });

TEST(WithoutAnApplicationInTheList, LoadingAloneDoesNotEndTheProcess)
{
    const ChildEnd end = RunChildTest("ChildOfNoApplication.DISABLED_Loads");
    EXPECT_EQ(end.exitCode, kOperationReturned);
    EXPECT_TRUE(end.traceLines.empty());
}

} // namespace
} // namespace kestraboot
