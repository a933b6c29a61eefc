// The stage of the unit tests: real plugin files in the test's own folder, which is the current
// directory.
#pragma once

#include "kestraboot/mox_plugin.h"
#include "tests/support/import_patch.h"
#include "tests/support/program_folder.h"
#include "tests/support/temp_folder.h"
#include "tests/trackers/mox/test_plugin/plugin_stage.h"

#include <windows.h>
#include <atomic>
#include <condition_variable>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace kestraboot::tests
{

using PluginEvents = std::vector<std::pair<std::wstring, Operation>>;

class PluginFolder final : public PluginStage
{
public:
    /// Makes an empty "moxplugins" in a temporary folder, which becomes the current directory.
    PluginFolder();
    PluginFolder(const PluginFolder&) = delete;
    PluginFolder& operator=(const PluginFolder&) = delete;
    /// Ends the trackers that the test started, frees the plugins that are still loaded, and restores
    /// the current directory.
    ~PluginFolder();

    /// Copies a plugin into the folder; "alpha" becomes ".\moxplugins\alpha.mox". Returns a descriptor
    /// with that path.
    mox::PluginDescriptor Add(const std::wstring& plugin, Behaviour behaviour = {});

    /// Sets the plugin's behaviour for the next load.
    void Replace(const std::wstring& plugin, Behaviour behaviour);

    /// A descriptor with that path. The function copies no file.
    static mox::PluginDescriptor Named(const std::wstring& plugin);

    [[nodiscard]] std::filesystem::path Path() const { return home.Path() / "moxplugins"; }

    /// Whether the library is loaded in the process.
    [[nodiscard]] static bool IsLoaded(const std::wstring& plugin);

    /// From now on every new thread is refused.
    void RefuseThreads() { threadsRefused = true; }
    [[nodiscard]] long ThreadsAskedFor() const { return create.Calls(); }

    /// References to objects of the plugin that were not released.
    [[nodiscard]] int References(const std::wstring& plugin);

    /// All events, in order, without the releases.
    [[nodiscard]] PluginEvents Events();
    /// The events of one plugin.
    [[nodiscard]] std::vector<Operation> EventsOf(const std::wstring& plugin);
    [[nodiscard]] int Count(const std::wstring& plugin, Operation operation);
    void ForgetEvents();

    /// Returns true when the operation has begun that many times, and false after 20 seconds.
    [[nodiscard]] bool Await(const std::wstring& plugin, Operation operation, int times = 1);

    /// The last entry that the plugin was handed, or null.
    [[nodiscard]] const mox::PluginDescriptor* EntryOf(const std::wstring& plugin);

    Behaviour BehaviourOf(const std::wstring& plugin) override;
    void Happened(const std::wstring& plugin, Operation operation) override;
    void CountReference(const std::wstring& plugin, int change) override;
    void TakeEntry(const std::wstring& plugin, const mox::PluginDescriptor* entry) override;

private:
    TempFolder home;
    std::filesystem::path before;
    std::mutex mutex;
    std::condition_variable changed;
    std::map<std::wstring, Behaviour> behaviours;
    std::map<std::wstring, int> references;
    std::map<std::wstring, const mox::PluginDescriptor*> entries;
    PluginEvents events;
    std::atomic<bool> threadsRefused = false;
    std::vector<HANDLE> threads; ///< the trackers' threads; the product keeps no handle
    FAKE_IMPORT(CreateThread) create;
};

/// Ends every source tracker of this process and waits for its thread. Returns their number.
int EndTrackers();

/// The number of windows of source trackers in this process.
[[nodiscard]] int CountTrackerWindows();

} // namespace kestraboot::tests
