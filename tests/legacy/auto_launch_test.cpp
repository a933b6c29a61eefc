#include "kestraboot/information_handler.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/spawn_recorder.h"
#include "tests/support/trace_recorder.h"

#include <gtest/gtest.h>

#include <process.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

using Calls = std::vector<SpawnCall>;

struct AutoLaunch : testing::Test {
    RegistrySandbox sandbox;
    SpawnRecorder spawns;
    TraceRecorder trace;
    CKestraBootInformationHandler handler;
};

TEST_F(AutoLaunch, IsStartedByTheDeviceConnectProgramDetached)
{
    RegisterOrganiser(L"C:\\Legacy");
    handler.StartVel3AutoLaunch();
    EXPECT_EQ(spawns.Calls(), (Calls{{_P_DETACH,
                                      L"C:\\Legacy\\VellumryDeviceConnect.exe",
                                      {L"\"C:\\Legacy\\VellumryDeviceConnect.exe\"", L"-i"}}}));
    EXPECT_TRUE(trace.Lines().empty());
}

TEST_F(AutoLaunch, IsStoppedByTheDeviceConnectProgramDetached)
{
    RegisterOrganiser(L"C:\\Legacy");
    handler.StopVel3AutoLaunch();
    EXPECT_EQ(spawns.Calls(), (Calls{{_P_DETACH,
                                      L"C:\\Legacy\\VellumryDeviceConnect.exe",
                                      {L"\"C:\\Legacy\\VellumryDeviceConnect.exe\"", L"-d"}}}));
    EXPECT_TRUE(trace.Lines().empty());
}

TEST_F(AutoLaunch, OfAnOrganiserThatIsNotInstalledDoesNothing)
{
    handler.StartVel3AutoLaunch();
    handler.StopVel3AutoLaunch();
    EXPECT_EQ(spawns.Calls(), Calls{});
    EXPECT_TRUE(trace.Lines().empty());
}

TEST_F(AutoLaunch, OfAProgramThatIsMissingFailsSilently)
{
    RegisterOrganiser(L"C:\\Legacy");
    spawns.Answer(-1);
    handler.StartVel3AutoLaunch();
    handler.StopVel3AutoLaunch();
    EXPECT_EQ(spawns.Calls().size(), 2U);
    EXPECT_TRUE(trace.Lines().empty());
}

TEST_F(AutoLaunch, DoesNotQuoteAFolderThatBeginsWithAQuote)
{
    RegisterOrganiser(L"\"C:\\Legacy");
    handler.StartVel3AutoLaunch();
    EXPECT_EQ(spawns.Calls(), (Calls{{_P_DETACH,
                                      L"\"C:\\Legacy\\VellumryDeviceConnect.exe",
                                      {L"\"C:\\Legacy\\VellumryDeviceConnect.exe", L"-i"}}}));
}

} // namespace
} // namespace kestraboot
