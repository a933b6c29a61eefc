// The organiser's programs really start: the tests check the command lines that they receive.
#include "kestraboot/command_handler.h"
#include "tests/support/echo_child.h"
#include "tests/support/handle_count.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

TEST(StartedOrganiserProgram, SeesTheSwitchOfTheAutoLaunch)
{
    const RegistrySandbox sandbox;
    const EchoChild child(L"old organiser\\VellumryDeviceConnect.exe");
    RegisterOrganiser((child.Folder() / L"old organiser").wstring());
    CKestraBootInformationHandler().StopVel3AutoLaunch();
    EXPECT_EQ(child.CommandLine(), L'"' + child.Program() + L"\" -d");
}

TEST(StartedOrganiserProgram, SeesTheDevice)
{
    const EchoChild child(L"old organiser\\VelProxy.exe");
    std::wstring path = child.Program();
    std::wstring type = L"volume";
    std::wstring id = L"E: the card";
    CKestraBootCommandHandler().LaunchVel3Proxy(path, type, id);
    const std::wstring line = child.CommandLine().value_or(L"");
    EXPECT_EQ(line, L'"' + path + L"\" -d \"V|E: the card\"");
    EXPECT_EQ(SplitCommandLine(line), (std::vector<std::wstring>{path, L"-d", L"V|E: the card"}));
}

TEST(StartedOrganiserProgram, LeavesNoHandleOpenHere)
{
    const EchoChild child;
    std::wstring path = child.Program();
    std::wstring type = L"volume";
    std::wstring id = L"E:";
    EXPECT_EQ(HandlesLeftBy([&] {
                  CKestraBootCommandHandler().LaunchVel3Proxy(path, type, id);
              }),
              0);
}

} // namespace
} // namespace kestraboot
