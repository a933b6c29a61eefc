// The stage of the unit tests: real plugin files in a folder of the test's own, which is the current
// directory.
#pragma once

#include "kestraboot/mox_plugin.h"
#include "tests/support/import_patch.h"
#include "tests/support/temp_folder.h"
#include "tests/trackers/mox/program_folder.h"
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
    /// Makes an empty "moxplugins" in a temporary folder and changes the current directory to that.
    PluginFolder();
    PluginFolder(const PluginFolder&) = delete;
    PluginFolder& operator=(const PluginFolder&) = delete;
    /// Ends the trackers that were started meanwhile, frees what plugins they have left loaded, goes
    /// back.
    ~PluginFolder();

    /// Puts a plugin there; "alpha" becomes ".\moxplugins\alpha.mox". Returns a descriptor with that
    /// path.
    mox::PluginDescriptor Add(const std::wstring& plugin, Behaviour behaviour = {});

    /// How it behaves when it is loaded the next time.
    void Replace(const std::wstring& plugin, Behaviour behaviour);

    /// A descriptor with that path; nothing is put there.
    static mox::PluginDescriptor Named(const std::wstring& plugin);

    [[nodiscard]] std::filesystem::path Path() const { return home.Path() / "moxplugins"; }

    /// Whether the library is in the process.
    [[nodiscard]] static bool IsLoaded(const std::wstring& plugin);

    /// From now on no thread can be had.
    void RefuseThreads() { threadsRefused = true; }
    [[nodiscard]] long ThreadsAskedFor() const { return create.Calls(); }

    /// References to objects of the plugin that were not given back.
    [[nodiscard]] int References(const std::wstring& plugin);

    /// What happened, in order; without the releases.
    [[nodiscard]] PluginEvents Events();
    /// What happened to one plugin.
    [[nodiscard]] std::vector<Operation> EventsOf(const std::wstring& plugin);
    [[nodiscard]] int Count(const std::wstring& plugin, Operation operation);
    void ForgetEvents();

    /// Returns when the operation has begun that many times; false after 20 seconds.
    [[nodiscard]] bool Await(const std::wstring& plugin, Operation operation, int times = 1);

    /// The entry that the plugin was handed last, or null.
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
    std::vector<HANDLE> threads; ///< of the trackers; the product keeps no handle
    FAKE_IMPORT(CreateThread) create;
};

/// Ends every source tracker of this process and waits for its thread. Returns how many there were.
int EndTrackers();

/// The windows of the source trackers of this process.
[[nodiscard]] int CountTrackerWindows();

} // namespace kestraboot::tests
