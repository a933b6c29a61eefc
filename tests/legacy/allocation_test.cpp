// Memory runs out in the rooms for the legacy organiser.
#include "kestraboot/command_handler.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct OrganiserOutOfMemory : testing::Test {
    OrganiserOutOfMemory() : spawn("_wspawnlp", Refuse), output("OutputDebugStringW", Ignore)
    {
        RegisterOrganiser(L"C:\\A folder with quite a long name");
    }
    static std::intptr_t Refuse(int, const wchar_t*, const wchar_t*, ...) { return -1; }
    static void Ignore(const wchar_t*) {}
    RegistrySandbox sandbox;
    ImportPatch spawn;
    ImportPatch output;
};

TEST_F(OrganiserOutOfMemory, ReachesTheCallerOfTheQuery)
{
    CKestraBootInformationHandler handler;
    EXPECT_GT(ForEveryAllocation(
                  [&] {
                      appInfo_tag record;
                      EXPECT_TRUE(handler.GetVel3Info(record));
                  },
                  [](bool threw) {
                      EXPECT_TRUE(threw);
                  }),
              10);
}

TEST_F(OrganiserOutOfMemory, ReachesTheCallersOfTheSwitchesAndTheProxy)
{
    CKestraBootCommandHandler handler;
    std::wstring path = L"C:\\A folder with quite a long name\\VelProxy.exe";
    std::wstring type = L"volume";
    std::wstring id = L"an identifier of some length";
    const auto threw = [](bool thrown) {
        EXPECT_TRUE(thrown);
    };
    EXPECT_GT(ForEveryAllocation(
                  [&] {
                      handler.StartVel3AutoLaunch();
                  },
                  threw),
              10);
    EXPECT_GT(ForEveryAllocation(
                  [&] {
                      handler.StopVel3AutoLaunch();
                  },
                  threw),
              10);
    EXPECT_GT(ForEveryAllocation(
                  [&] {
                      handler.LaunchVel3Proxy(path, type, id);
                  },
                  threw),
              2);
}

} // namespace
} // namespace kestraboot
