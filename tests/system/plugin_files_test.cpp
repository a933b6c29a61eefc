// The folders of a plugin and of its dependencies, and the application that its reports start.
#include "tests/system/plugin_test.h"

namespace kestraboot::tests
{
namespace
{

using PluginFiles = PluginTest;

TEST_F(PluginFiles, NeedTheirDllsBesideTheBootProgram)
{
    Install(L"divided.mox", kPhoneManager);
    Install(L"plugin_name.dll", L"moxplugins/plugin_name.dll");
    Start();
    EXPECT_TRUE(trace.Await(kNoPhoneManager));
    Quit(*boot);
    EXPECT_EQ(trace.Count(Detecting("Players")), 0);

    Install(L"plugin_name.dll", L"plugin_name.dll");
    Start();
    EXPECT_TRUE(trace.Await(Detecting("Players")));
    Quit(*boot);
}

TEST_F(PluginFiles, MayHaveThePhoneManagersNameAndTheirOwn)
{
    Install(L"kept_thread.mox", L"moxplugins/players.mox");
    Install(L"sample_plugin.mox", L"moxplugins/sample.mox");
    StartWith(L"kept_thread.mox", "Players");
    EXPECT_TRUE(trace.Await(Detecting("Sample devices")));
    Quit(*boot);
    EXPECT_EQ(trace.Count(Detecting("Players")), 1) << "one plugin was tracked twice";
}

TEST_F(PluginFiles, StartTheApplicationForEachReportOfOneDevice)
{
    StartWith(L"sample_plugin.mox", "Sample devices");
    const HANDLE camera = ::OpenEventW(EVENT_MODIFY_STATE, FALSE, L"KestrabootSampleDevice");
    ASSERT_NE(camera, nullptr);
    const std::string started = "\"" + app.Application().string() +
                                "\" module=kestrafetch params mode=direct devType=camera "
                                "priDevId=\"Sample camera\"";
    for (int reports = 1; reports <= 2; ++reports) {
        ::SetEvent(camera);
        EXPECT_TRUE(Within(30'000, [&] {
            return trace.Count(started) == reports;
        })) << reports;
    }
    ::CloseHandle(camera);
    Quit(*boot);
}

} // namespace
} // namespace kestraboot::tests
