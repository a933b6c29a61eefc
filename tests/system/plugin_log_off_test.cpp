// What a log-off does to a plugin: it is not asked, and its static objects are destroyed.
#include "tests/system/plugin_test.h"

namespace kestraboot::tests
{
namespace
{

class PluginAtLogOff : public PluginTest
{
protected:
    /// Tells every program of this session that it ends, as Windows does. Answers how the boot program
    /// ended.
    DWORD LogOff()
    {
        wchar_t system[MAX_PATH] = {};
        ::GetSystemDirectoryW(system, MAX_PATH);
        ChildProcess wineboot(std::filesystem::path(system) / "wineboot.exe", L"-e -s");
        EXPECT_EQ(wineboot.ExitCode(), 0U);
        return boot->ExitCode();
    }
};

TEST_F(PluginAtLogOff, BuiltFromTheSampleLetsTheBootProgramEndWell)
{
    StartWith(L"sample_plugin.mox", "Sample devices");
    EXPECT_EQ(LogOff(), kDone);
}

TEST_F(PluginAtLogOff, IsAskedForNothing)
{
    StartWith(L"kept_thread.mox", "Players");
    const int shutDowns = trace.Count("player: ShutDown");
    EXPECT_EQ(shutDowns, 2) << "after the test for the phone manager, and after the scan";
    EXPECT_EQ(LogOff(), kDone);
    EXPECT_EQ(trace.Count("player: ShutDown"), shutDowns);
    EXPECT_EQ(trace.Count("player: UnregisterCallback"), 0);
}

TEST_F(PluginAtLogOff, WithAThreadInAStaticObjectEndsTheBootProgramBadly)
{
    constexpr DWORD kTerminated = 3; // what abort ends a process with
    StartWith(L"static_thread.mox", "Players");
    EXPECT_EQ(LogOff(), kTerminated);
}

} // namespace
} // namespace kestraboot::tests
