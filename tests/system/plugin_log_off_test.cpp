// The effect of the end of the process on a plugin. The host does not call it. Its static objects are
// destroyed if the process exits, and are not if it is terminated, as at log-off.
#include "samples/simulators/cards/card_slot.h"
#include "samples/simulators/cards/volume_message.h"
#include "tests/support/unix_path.h"
#include "tests/system/drop_folder.h"
#include "tests/system/plugin_test.h"

#include <dbt.h>

namespace kestraboot::tests
{
namespace
{

class PluginAtTheEnd : public PluginTest
{
protected:
    PluginAtTheEnd() { SetWindowsVersion(L"kestraboot.exe", L"vista"); }
    ~PluginAtTheEnd() override { static_cast<void>(simulators::TakeCardOut(L'E')); }

    /// Notifies every program of the end of this session, as Windows does. Returns how the boot program
    /// ended.
    DWORD LogOff()
    {
        wchar_t system[MAX_PATH] = {};
        ::GetSystemDirectoryW(system, MAX_PATH);
        ChildProcess wineboot(std::filesystem::path(system) / "wineboot.exe", L"-e -s");
        EXPECT_EQ(wineboot.ExitCode(), 0U);
        return boot->ExitCode();
    }

    /// A card arrives when no application is left: the library ends the process with ExitProcess.
    /// Returns how it ended.
    DWORD LeaveNoApplication()
    {
        const HWND window = AwaitWindow(boot->Id(), kVolumeWindow);
        EXPECT_NE(window, nullptr);
        app.Unregister();
        EXPECT_TRUE(simulators::InsertCard(L'E', UnixPath(card.Path())));
        // The process exits before the window answers.
        static_cast<void>(
            simulators::SendVolumeMessage(window, DBT_DEVICEARRIVAL, L'E', SMTO_NORMAL, 30'000));
        return boot->ExitCode();
    }

    TempFolder card;
};

TEST_F(PluginAtTheEnd, BuiltFromTheSampleLetsTheBootProgramExitWithSuccess)
{
    StartWith(L"sample_plugin.mox", "Sample devices");
    EXPECT_EQ(LogOff(), kDone);
}

TEST_F(PluginAtTheEnd, BuiltFromTheSampleLetsAProcessExitWithSuccess)
{
    StartWith(L"sample_plugin.mox", "Sample devices");
    EXPECT_EQ(LeaveNoApplication(), kDone);
}

TEST_F(PluginAtTheEnd, WatchingAFolderLetsTheBootProgramExitWithSuccess)
{
    const DropFolder drop;
    StartWith(L"drop_folder.mox", "Drop folder");
    EXPECT_TRUE(trace.Await(drop.Watched()));
    EXPECT_EQ(LogOff(), kDone);
}

TEST_F(PluginAtTheEnd, WatchingAFolderLetsAProcessExitWithSuccess)
{
    const DropFolder drop;
    StartWith(L"drop_folder.mox", "Drop folder");
    EXPECT_TRUE(trace.Await(drop.Watched()));
    EXPECT_EQ(LeaveNoApplication(), kDone);
}

TEST_F(PluginAtTheEnd, IsNotCalled)
{
    StartWith(L"kept_thread.mox", "Players");
    const int shutDowns = trace.Count("player: ShutDown");
    EXPECT_EQ(shutDowns, 2) << "after the test for the phone manager, and after the scan";
    EXPECT_EQ(LogOff(), kDone);
    EXPECT_EQ(trace.Count("player: ShutDown"), shutDowns);
    EXPECT_EQ(trace.Count("player: UnregisterCallback"), 0);
}

TEST_F(PluginAtTheEnd, IsNotDestroyedAtLogOff)
{
    StartWith(L"static_thread.mox", "Players");
    EXPECT_EQ(LogOff(), kDone);
}

TEST_F(PluginAtTheEnd, WithAThreadInAStaticObjectMakesAProcessThatExitsFail)
{
    constexpr DWORD kTerminated = 3; // the exit code of abort
    StartWith(L"static_thread.mox", "Players");
    EXPECT_EQ(LeaveNoApplication(), kTerminated);
}

TEST_F(PluginAtTheEnd, WithAThreadThatIsNeverDestroyedLetsAProcessExitWithSuccess)
{
    StartWith(L"kept_thread.mox", "Players");
    EXPECT_EQ(LeaveNoApplication(), kDone);
}

} // namespace
} // namespace kestraboot::tests
