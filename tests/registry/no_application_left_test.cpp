// A real process exits because no compatible application is left, whichever function was called.
#include "kestraboot/command_handler.h"
#include "tests/support/run_in_child.h"

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

struct Operation {
    const char* name;
    void (*call)();
};

struct WithoutAnApplication : testing::TestWithParam<Operation> {
};

TEST_P(WithoutAnApplication, TheProcessEndsWithCode0AfterTwoLines)
{
    ExpectEndWithTwoLines(RunInChild(GetParam().call));
}

const Operation kOperations[] = {
    {"MaintainsTheOrder",
     [] {
         CKestraBootInformationHandler().MaintainOrder();
     }},
    {"LaunchesTheDefault",
     [] {
         CKestraBootCommandHandler().LaunchDefaultKestra(word, word);
     }},
    {"LaunchesItsOwn",
     [] {
         CKestraBootCommandHandler().LaunchOwnKestra(word, word, word);
     }},
    {"SetsADefault",
     [] {
         static_cast<void>(CKestraBootCommandHandler().SetApplicationDefaultStatus(word, word));
     }},
    {"AsksForItsLaunchStatus",
     [] {
         static_cast<void>(CKestraBootInformationHandler().GetKestraLaunchStatus());
     }},
    {"SetsItsLaunchStatus",
     [] {
         static_cast<void>(CKestraBootInformationHandler().SetKestraLaunchStatus(1));
     }},
    {"AsksForItsLocale",
     [] {
         static_cast<void>(CKestraBootInformationHandler().GetKestraLocaleString(word));
     }},
};

INSTANTIATE_TEST_SUITE_P(For, WithoutAnApplication, testing::ValuesIn(kOperations),
                         [](const auto& instance) {
                             return std::string(instance.param.name);
                         });

TEST(WithoutAnApplicationInTheList, LoadingAloneDoesNotEndTheProcess)
{
    const ChildEnd end = RunInChild([] {
        CKestraBootInformationHandler().LoadInformation();
    });
    EXPECT_EQ(end.exitCode, kOperationReturned);
    EXPECT_TRUE(end.traceLines.empty());
}

} // namespace
} // namespace kestraboot
