// Plugins that report, that are loaded and that are released, at the same time as each other and as a
// scan of the drives.
#include "tests/endurance/fuzz/hive_registry.h"
#include "tests/endurance/interleavings/explore.h"
#include "tests/endurance/interleavings/host_in_scene.h"
#include "tests/endurance/interleavings/plugin_in_scene.h"

#include "foundation/text.h"
#include "service/dispatch.h"
#include "trackers/mox/callback_interface.h"
#include "trackers/mox/mox_host.h"
#include "trackers/mox/plugin_list.h"
#include "trackers/mox/source_tracker.h"
#include "trackers/volume/drive_watch.h"
#include "trackers/volume/volume_scan.h"

namespace kestraboot::interleavings
{
namespace
{

/// A scene with plugins.
class WithPlugins : public Scene
{
public:
    WithPlugins() { InitializeDispatch(); }

    std::string Check() override
    {
        const std::string wrong = machine.Check();
        return wrong.empty() ? host.Check(reported) : wrong;
    }

protected:
    static Scheduler& Threads() { return Scheduler::Current(); }

    void AddReportsOf(const PluginInScene& plugin)
    {
        for (int report = 0; report < plugin.reported; ++report) {
            reported.push_back(plugin.DeviceOf(report));
        }
    }

    Machine machine;
    HostInScene host;
    std::vector<std::wstring> reported;
};

mox::DeviceRecord RecordOf(const std::wstring& device)
{
    mox::DeviceRecord record = {};
    record.eventCode = mox::kDeviceArrived;
    record.size = mox::kDeviceRecordSize;
    record.deviceKind = mox::kKindAudio;
    device.copy(record.deviceId, mox::kFieldLength - 1);
    return record;
}

/// Two threads of a plugin call its callback, while a tracker reports a card.
class CallbackOfAPlugin : public WithPlugins
{
public:
    CallbackOfAPlugin()
    {
        callback->AddReference();
        reported = {L"player 1", L"player 2", L"E:"};
        for (const std::wstring device : {L"player 1", L"player 2"}) {
            Threads().Start("plugin", [this, device] {
                const mox::DeviceRecord record = RecordOf(device);
                callback->Notify(0, &record);
            });
        }
        Threads().Start("volume tracker", [this] {
            host.Report(L"E:");
        });
    }
    ~CallbackOfAPlugin() override { callback->Release(); }

private:
    CMOXCallbackInterface* callback = new CMOXCallbackInterface;
};

/// The tracker gives its reference back while the plugin's thread, with one of its own, still reports.
class LastReference : public WithPlugins
{
public:
    LastReference()
    {
        callback->AddReference();
        callback->AddReference();
        reported = {L"player 1", L"player 2"};
        Threads().Start("plugin", [this] {
            for (const std::wstring device : {L"player 1", L"player 2"}) {
                const mox::DeviceRecord record = RecordOf(device);
                callback->Notify(0, &record);
            }
            freed += callback->Release() == 0 ? 1 : 0;
        });
        Threads().Start("tracker", [this] {
            Threads().Point("gives the callback back");
            freed += callback->Release() == 0 ? 1 : 0;
        });
    }

    std::string Check() override
    {
        const std::string wrong = WithPlugins::Check();
        return !wrong.empty() || (freed == 1 && machine.LocksDeleted() == 1)
                   ? wrong
                   : "the callback was not freed once";
    }

private:
    CMOXCallbackInterface* callback = new CMOXCallbackInterface;
    int freed = 0;
};

/// Loads a plugin as its tracker does, and unloads it as the scan does.
void LoadAndUnload(int plugin)
{
    PluginList list;
    mox::PluginDescriptor wanted = {};
    CopyToField(wanted.modulePath, PluginInScene::PathOf(plugin));
    if (list.LoadPlugin(wanted) != mox::kSuccess || list.UnloadAllPlugins() != 1) {
        Scheduler::Running()->Fail("a plugin is not loaded");
    }
}

class TwoLoads : public WithPlugins
{
public:
    TwoLoads()
    {
        for (int plugin = 0; plugin < 2; ++plugin) {
            Threads().Start("loader " + std::to_string(plugin), [plugin] {
                LoadAndUnload(plugin);
            });
        }
    }

    std::string Check() override
    {
        for (const auto& [path, library] : machine.libraries) {
            if (library.loads != 0) {
                return "a library stays loaded";
            }
        }
        return WithPlugins::Check();
    }

private:
    PluginInScene first{machine, 0, 0};
    PluginInScene second{machine, 1, 0};
};

/// A card is detected and searched, while a plugin is loaded.
class ScanBesideLoad : public WithPlugins
{
public:
    ScanBesideLoad()
    {
        reported = {L"E:"};
        Threads().Start("volume tracker", [this] {
            DriveWatch watch;
            VolumeScan scan(watch);
            machine.cardThere = true;
            scan.Trigger();
        });
        Threads().Start("loader", [] {
            LoadAndUnload(0);
        });
    }

private:
    PluginInScene plugin{machine, 0, 0};
};

/// The thread of a source runs until it is asked to quit, which may be at any time: the plugin has two
/// devices.
class Unregistering : public WithPlugins
{
public:
    explicit Unregistering(EndsThread ends = EndsThread::AndWaits) : plugin(machine, 0, 2, ends)
    {
        Threads().Start("source", [] {
            DeviceSource source;
            source.identifier = PluginInScene::IdentifierOf(0);
            source.modulePath = PluginInScene::PathOf(0);
            SourceTrackerThread(new SourceTracker(source));
        });
    }

    std::string Check() override
    {
        AddReportsOf(plugin);
        const std::string wrong = WithPlugins::Check();
        return !wrong.empty() || (plugin.unregistered && machine.LocksDeleted() == 1)
                   ? wrong
                   : "the callback was not given back, or not freed";
    }

private:
    PluginInScene plugin;
};

class UnregisteringWithoutWaiting : public Unregistering
{
public:
    UnregisteringWithoutWaiting() : Unregistering(EndsThread::WithItsReference) {}
};

/// The whole road: the host finds two plugins, each source gets a thread, and each plugin has one.
class TwoSources : public WithPlugins
{
public:
    TwoSources()
    {
        Threads().Start("plugin host", [] {
            MoxHostThread(nullptr);
        });
    }

    std::string Check() override
    {
        AddReportsOf(first);
        AddReportsOf(second);
        const std::string wrong = WithPlugins::Check();
        return !wrong.empty() || (first.unregistered && second.unregistered)
                   ? wrong
                   : "a source was not tracked";
    }

private:
    PluginInScene first{machine, 0, 1};
    PluginInScene second{machine, 1, 1};
};

TEST(PluginInterleavings, OfItsThreadsLoseAndRepeatNoReport)
{
    GoesWellInEverySchedule<CallbackOfAPlugin>();
}

TEST(PluginInterleavings, OfTheLastReferenceFreeTheCallbackOnceAndNotTooEarly)
{
    GoesWellInEverySchedule<LastReference>();
}

TEST(PluginInterleavings, OfTwoLoadsKeepTheErrorMode)
{
    GoesWellInEverySchedule<TwoLoads>();
}

TEST(PluginInterleavings, OfAScanBesideALoadKeepTheErrorMode)
{
    fuzz::HiveRegistry registry; // a real one would take most of the time
    fuzz::HiveKey& application = registry.machine.Make(L"SOFTWARE\\Corvane\\App\\Corvane Kestrafetch");
    application.PutText(L"Name", L"App");
    application.PutText(L"ProxyPath", L"C:\\App\\kestraboot.exe");
    application.PutText(L"CmdLine", L"C:\\App\\app.exe");
    application.MakeSubkey(L"File Formats").PutText(L"Image", L"jpg");
    GoesWellInEverySchedule<ScanBesideLoad>();
}

TEST(PluginInterleavings, OfAReportWhileTheSourceIsUnregisteredUseNothingThatIsFreed)
{
    GoesWellInEverySchedule<Unregistering>();
}

TEST(PluginInterleavings, OfAThreadThatIsNotWaitedForUseNothingThatIsFreed)
{
    GoesWellInEverySchedule<UnregisteringWithoutWaiting>();
}

TEST(PluginInterleavings, OfTwoSourcesFromTheScanToTheEndLoseNoReport)
{
    GoesWellInEverySchedule<TwoSources>(PreemptionsAskedFor() - 1); // it is the longest of them
}

} // namespace
} // namespace kestraboot::interleavings
