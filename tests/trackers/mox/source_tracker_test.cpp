#include "trackers/mox/source_tracker.h"

#include "tests/support/import_patch.h"
#include "tests/support/process_window.h"
#include "tests/support/signal.h"
#include "tests/support/trace_recorder.h"
#include "tests/trackers/mox/device_reports.h"
#include "tests/trackers/mox/memory_faults.h"
#include "tests/trackers/mox/plugin_folder.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <memory>
#include <new>
#include <thread>

namespace kestraboot
{
namespace
{

using tests::Behaviour;
using tests::DeviceReport;
using tests::DeviceReports;
using tests::Operation;
using tests::PluginFolder;

std::wstring Detecting(const std::wstring& name)
{
    return L"<***DeviceConnect***><" + name + L"><Devices will be detected.>";
}

/// Reports a camera, like a plugin.
mox::Status Tell(mox::ICallbackInterface* callback, const wchar_t* id)
{
    mox::DeviceRecord record = {};
    record.size = mox::kDeviceRecordSize;
    record.deviceKind = mox::kKindCamera;
    std::wcscpy(record.deviceId, id);
    return callback->Notify(0, &record);
}

class Tracker : public testing::Test
{
protected:
    /// The source that the scan finds for the plugin.
    DeviceSource Source(const wchar_t* plugin, Behaviour behaviour = {})
    {
        const auto descriptor = folder.Add(plugin, std::move(behaviour));
        PluginList plugins;
        EXPECT_EQ(plugins.LoadPlugin(descriptor), mox::kSuccess);
        const mox::PluginDescriptor entry = plugins.Entries().front();
        plugins.UnloadAllPlugins();
        folder.ForgetEvents();
        return {entry.name, entry.identifier, entry.value, entry.modulePath};
    }

    /// Runs a tracker that is expected to end by itself.
    static void RunToItsEnd(const DeviceSource& source)
    {
        std::thread thread([&] {
            SourceTrackerThread(new SourceTracker(source));
        });
        thread.join();
    }

    DeviceReports reports;
    tests::TraceRecorder trace;
    PluginFolder folder;
};

TEST_F(Tracker, LoadsOpensRegistersAndThenListens)
{
    StartSourceTracker(Source(L"alpha"));
    ASSERT_TRUE(trace.Await(Detecting(L"alpha")));
    EXPECT_TRUE(folder.IsLoaded(L"alpha"));
    EXPECT_EQ(
        folder.EventsOf(L"alpha"),
        (std::vector<Operation>{Operation::Main, Operation::QueryDescriptor, Operation::GetValue,
                                Operation::GetIdentifier, Operation::GetName, Operation::SetListEntry,
                                Operation::Main, Operation::QuerySource, Operation::Register}));
    EXPECT_EQ(tests::CountTrackerWindows(), 1);
    EXPECT_EQ(folder.References(L"alpha"), 1) << "the open source manager";
}

TEST_F(Tracker, MakesItsWindowHiddenAndPlain)
{
    struct Made {
        DWORD style;
        int x, y, width, height;
        std::wstring windowClass, name;
        bool bare;
    };
    Made window = {};
    const FAKE_IMPORT(CreateWindowExW) create(
        [&](DWORD extended, const wchar_t* windowClass, const wchar_t* name, DWORD style, int x, int y,
            int width, int height, HWND parent, HMENU menu, HINSTANCE instance, void* parameter) {
            const bool bare = extended == 0 && parent == nullptr && menu == nullptr &&
                              instance == nullptr && parameter == nullptr;
            window = {style, x, y, width, height, windowClass, name, bare};
            return HWND{};
        });
    RunToItsEnd(Source(L"alpha"));
    EXPECT_EQ(window.style, 0x80000000U);
    EXPECT_EQ(std::vector<int>({window.x, window.y, window.width, window.height}),
              std::vector<int>({20, 20, 200, 200}));
    EXPECT_EQ(window.windowClass, L"STATIC");
    EXPECT_EQ(window.name, L"MOXTrackerWindow");
    EXPECT_TRUE(window.bare);
    // Without a window there is no tracker: it releases everything except for the library.
    EXPECT_TRUE(trace.Lines().empty());
    EXPECT_EQ(folder.Count(L"alpha", Operation::Unregister), 1);
    EXPECT_EQ(folder.References(L"alpha"), 0);
    EXPECT_TRUE(folder.IsLoaded(L"alpha"));
}

TEST_F(Tracker, ForwardsReportsOfThePluginFromAnyThread)
{
    mox::ICallbackInterface* callback = nullptr;
    Behaviour behaviour;
    behaviour.onRegister = [&](mox::ICallbackInterface* given) {
        callback = given;
        EXPECT_EQ(Tell(given, L"while registering"), mox::kSuccess);
    };
    StartSourceTracker(Source(L"alpha", behaviour));
    ASSERT_TRUE(trace.Await(Detecting(L"alpha")));
    EXPECT_EQ(Tell(callback, L"from the test"), mox::kSuccess);
    std::thread([&] {
        EXPECT_EQ(Tell(callback, L"from a thread"), mox::kSuccess);
    }).join();
    EXPECT_EQ(reports.All(), (std::vector<DeviceReport>{{L"camera", L"while registering"},
                                                        {L"camera", L"from the test"},
                                                        {L"camera", L"from a thread"}}));
}

TEST_F(Tracker, ReleasesEverythingExceptForTheLibraryWhenItsLoopEnds)
{
    mox::ICallbackInterface* callback = nullptr;
    Behaviour behaviour;
    behaviour.onRegister = [&](mox::ICallbackInterface* given) {
        callback = given;
        given->AddReference(); // the test's reference
    };
    StartSourceTracker(Source(L"alpha", behaviour));
    ASSERT_TRUE(trace.Await(Detecting(L"alpha")));
    folder.ForgetEvents();
    const tests::SpoilFreedMemory spoil;
    EXPECT_EQ(tests::EndTrackers(), 1);
    EXPECT_EQ(folder.EventsOf(L"alpha"), (std::vector<Operation>{Operation::Unregister}));
    EXPECT_EQ(folder.References(L"alpha"), 0);
    EXPECT_TRUE(folder.IsLoaded(L"alpha"));
    EXPECT_EQ(tests::CountTrackerWindows(), 0);
    // A plugin that owns a reference may call at any time.
    EXPECT_EQ(Tell(callback, L"after the end"), mox::kSuccess);
    EXPECT_EQ(reports.All().size(), 1U);
    EXPECT_EQ(callback->Release(), 0U) << "a reference to the callback is left";
    // The plugin's entry still exists, because the plugin stays loaded.
    EXPECT_STREQ(folder.EntryOf(L"alpha")->name, L"alpha");
}

TEST_F(Tracker, AnswersMessagesThatAreSentToItsWindow)
{
    StartSourceTracker(Source(L"alpha"));
    ASSERT_TRUE(trace.Await(Detecting(L"alpha")));
    const HWND window = tests::FindOwnWindow(L"MOXTrackerWindow");
    DWORD_PTR answer = 0;
    for (const UINT message : {UINT{WM_NULL}, UINT{WM_DEVICECHANGE}, UINT{WM_APP + 1}}) {
        EXPECT_NE(::SendMessageTimeoutW(window, message, 0, 0, SMTO_BLOCK, 20000, &answer), 0)
            << message;
    }
    EXPECT_TRUE(::PostMessageW(window, WM_DEVICECHANGE, 7, 0));
    EXPECT_NE(::SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_BLOCK, 20000, &answer), 0);
}

TEST_F(Tracker, TriesAgainWhenNoMessageCanBeRead)
{
    int calls = 0;
    int pauses = 0;
    UINT first = 0;
    UINT last = 0;
    HWND filtered = nullptr;
    const FAKE_IMPORT(GetMessageW) get([&](MSG*, HWND window, UINT from, UINT to) -> BOOL {
        filtered = window;
        first = from;
        last = to;
        return ++calls < 4 ? -1 : 0;
    });
    const FAKE_IMPORT(Sleep) sleep([&](DWORD milliseconds) {
        EXPECT_EQ(milliseconds, 50U);
        ++pauses;
    });
    RunToItsEnd(Source(L"alpha"));
    EXPECT_EQ(calls, 4);
    EXPECT_EQ(pauses, 3) << "a destroyed window keeps a processor busy";
    EXPECT_NE(filtered, nullptr);
    EXPECT_EQ(first, 537U);
    EXPECT_EQ(last, 537U);
    EXPECT_EQ(folder.References(L"alpha"), 0);
}

TEST_F(Tracker, CutsItsTraceLineAt259Characters)
{
    Behaviour behaviour;
    behaviour.name = std::wstring(259, L'n');
    StartSourceTracker(Source(L"alpha", behaviour));
    EXPECT_TRUE(trace.Await((L"<***DeviceConnect***><" + std::wstring(259, L'n')).substr(0, 259)));
}

TEST_F(Tracker, EndsQuietlyWhenItsPluginIsGone)
{
    const DeviceSource source = Source(L"alpha");
    std::filesystem::remove(folder.Path() / "alpha.mox");
    RunToItsEnd(source);
    DeviceSource withoutPath = source;
    withoutPath.modulePath.clear();
    RunToItsEnd(withoutPath);
    EXPECT_TRUE(trace.Lines().empty());
    EXPECT_EQ(tests::CountTrackerWindows(), 0);
}

TEST_F(Tracker, EndsQuietlyWhenItsLibraryIsInTheProcessAlready)
{
    const DeviceSource source = Source(L"alpha");
    PluginList others;
    ASSERT_EQ(others.LoadPlugin(PluginFolder::Named(L"alpha")), mox::kSuccess);
    RunToItsEnd(source); // the tracker lists no plugin, so it has no source
    EXPECT_EQ(folder.Count(L"alpha", Operation::Register), 0);
    EXPECT_TRUE(trace.Lines().empty());
    others.UnloadAllPlugins();
}

class FailingTracker : public Tracker, public testing::WithParamInterface<std::pair<Operation, bool>>
{
};

TEST_P(FailingTracker, EndsQuietlyAndLeaksNothing)
{
    const auto [operation, throws] = GetParam();
    const DeviceSource source = Source(L"alpha");
    // From now on the plugin fails.
    Behaviour behaviour;
    (throws ? behaviour.throws : behaviour.fails) = operation;
    folder.Replace(L"alpha", behaviour);
    RunToItsEnd(source);
    EXPECT_LE(folder.Count(L"alpha", Operation::Register), 1) << "the callback was registered again";
    EXPECT_TRUE(trace.Lines().empty());
    EXPECT_EQ(folder.References(L"alpha"), 0);
    EXPECT_EQ(tests::CountTrackerWindows(), 0);
    StartSourceTracker(Source(L"beta"));
    EXPECT_TRUE(trace.Await(Detecting(L"beta"))) << "the host did not continue";
}

INSTANTIATE_TEST_SUITE_P(
    EachOperation, FailingTracker,
    testing::Values(std::pair(Operation::Main, false), std::pair(Operation::Main, true),
                    std::pair(Operation::QueryDescriptor, false),
                    std::pair(Operation::QueryDescriptor, true), std::pair(Operation::GetName, true),
                    std::pair(Operation::GetValue, true), std::pair(Operation::GetIdentifier, true),
                    std::pair(Operation::SetListEntry, true),
                    std::pair(Operation::ReleaseDescriptor, true),
                    std::pair(Operation::QuerySource, false), std::pair(Operation::QuerySource, true),
                    std::pair(Operation::Register, false), std::pair(Operation::Register, true)));

TEST_F(Tracker, SurvivesAPluginThatThrowsAtTheEnd)
{
    for (const Operation operation : {Operation::Unregister, Operation::ReleaseSource}) {
        const std::wstring name = operation == Operation::Unregister ? L"alpha" : L"beta";
        Behaviour behaviour;
        behaviour.throws = operation;
        StartSourceTracker(Source(name.c_str(), behaviour));
        ASSERT_TRUE(trace.Await(Detecting(name)));
        EXPECT_EQ(tests::EndTrackers(), 1);
        EXPECT_EQ(folder.References(name), 0);
    }
}

TEST_F(Tracker, IsNotHeldUpByASlowPluginOfAnother)
{
    const tests::Signal letItGo;
    Behaviour slow;
    slow.during = [&](Operation operation) {
        if (operation == Operation::Register) {
            letItGo.Wait();
        }
    };
    StartSourceTracker(Source(L"slow", slow));
    ASSERT_TRUE(folder.Await(L"slow", Operation::Register));
    StartSourceTracker(Source(L"quick"));
    EXPECT_TRUE(trace.Await(Detecting(L"quick")));
    letItGo.Set();
    EXPECT_TRUE(trace.Await(Detecting(L"slow")));
}

TEST_F(Tracker, HoldsNoLockOfItsOwnWhileItCallsThePlugin)
{
    // The thread that reports a device holds the plugin's lock while the tracker unregisters.
    std::mutex pluginLock;
    mox::ICallbackInterface* callback = nullptr;
    Behaviour behaviour;
    behaviour.onRegister = [&](mox::ICallbackInterface* given) {
        callback = given;
    };
    const tests::Signal telling;
    behaviour.during = [&](Operation operation) {
        if (operation == Operation::Unregister) {
            const std::lock_guard lock(pluginLock);
        }
    };
    StartSourceTracker(Source(L"alpha", behaviour));
    ASSERT_TRUE(trace.Await(Detecting(L"alpha")));
    const tests::Signal unregistering;
    std::thread teller([&] {
        callback->AddReference();
        const std::lock_guard lock(pluginLock);
        telling.Set();
        unregistering.Wait();
        EXPECT_EQ(Tell(callback, L"under the plugin's lock"), mox::kSuccess);
        callback->Release();
    });
    telling.Wait();
    std::thread ender([] {
        EXPECT_EQ(tests::EndTrackers(), 1);
    });
    EXPECT_TRUE(folder.Await(L"alpha", Operation::Unregister));
    unregistering.Set();
    teller.join();
    ender.join();
    EXPECT_EQ(reports.All().size(), 1U);
}

TEST_F(Tracker, ThatGetsNoThreadIsNotStarted)
{
    folder.RefuseThreads();
    StartSourceTracker(Source(L"alpha"));
    EXPECT_EQ(folder.ThreadsAskedFor(), 1);
    EXPECT_TRUE(folder.Events().empty());
}

} // namespace
} // namespace kestraboot
