#include "trackers/mox/mox_host.h"

#include "tests/support/import_patch.h"
#include "tests/support/trace_recorder.h"
#include "tests/trackers/mox/plugin_folder.h"
#include "trackers/mox/plugin_host.h"
#include "trackers/mox/source_scan.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <functional>
#include <new>

namespace kestraboot
{
namespace
{

using tests::Behaviour;
using tests::Operation;
using tests::PluginFolder;
using Operations = std::vector<Operation>;

constexpr const wchar_t* kPhoneManager = L"nokiamanager";
constexpr const wchar_t* kNotDetected = L"<***DeviceConnect***><NOKIA Devices will not be detected.>";

std::wstring Detecting(const std::wstring& name)
{
    return L"<***DeviceConnect***><" + name + L"><Devices will be detected.>";
}

class Host : public testing::Test
{
protected:
    /// Runs the host's thread until it returns.
    static void Run() { EXPECT_EQ(MoxHostThread(nullptr), 0U); }

    tests::TraceRecorder trace;
    PluginFolder folder;
};

TEST_F(Host, WaitsForThePhoneManagerAMinuteAtATimeAndLoadsNothingElse)
{
    folder.Add(L"other");
    std::vector<DWORD> waits;
    const FAKE_IMPORT(Sleep) sleep([&](DWORD milliseconds) {
        waits.push_back(milliseconds);
        EXPECT_EQ(trace.Lines(), std::vector<std::wstring>(waits.size(), kNotDetected));
        EXPECT_TRUE(folder.Events().empty()) << "another plugin was loaded";
        EXPECT_FALSE(folder.IsLoaded(L"other"));
        if (waits.size() == 3) {
            folder.Add(kPhoneManager);
        }
    });
    Run();
    EXPECT_EQ(waits, std::vector<DWORD>(3, 60000));
    EXPECT_TRUE(trace.Await(Detecting(kPhoneManager)));
    EXPECT_TRUE(trace.Await(Detecting(L"other")));
}

TEST_F(Host, TestsThePhoneManagerWithoutErrorBoxesAndUnloadsItAgain)
{
    Behaviour behaviour;
    std::vector<UINT> modes;
    behaviour.during = [&](Operation operation) {
        if (operation == Operation::QuerySource) {
            modes.push_back(::GetErrorMode());
        }
    };
    behaviour.fails = Operation::QuerySource; // loads, but has no source manager
    folder.Add(kPhoneManager, behaviour);
    const FAKE_IMPORT(Sleep) sleep([&](DWORD) {
        EXPECT_EQ(trace.Lines(), std::vector<std::wstring>{kNotDetected});
        EXPECT_EQ(folder.EventsOf(kPhoneManager),
                  (Operations{Operation::Main, Operation::QueryDescriptor, Operation::GetValue,
                              Operation::GetIdentifier, Operation::GetName, Operation::SetListEntry,
                              Operation::Main, Operation::QuerySource, Operation::Main,
                              Operation::QueryDescriptor, Operation::ShutDown}));
        EXPECT_FALSE(folder.IsLoaded(kPhoneManager));
        EXPECT_EQ(folder.References(kPhoneManager), 0);
        EXPECT_EQ(::GetErrorMode(), static_cast<UINT>(SEM_NOGPFAULTERRORBOX));
        folder.Replace(kPhoneManager, {});
    });
    ::SetErrorMode(SEM_NOGPFAULTERRORBOX);
    Run();
    EXPECT_TRUE(trace.Await(Detecting(kPhoneManager)));
    EXPECT_EQ(modes, std::vector<UINT>{1});
    EXPECT_EQ(sleep.Calls(), 1);
    ::SetErrorMode(0);
}

TEST_F(Host, ScansOnceShutsEverythingDownAndStartsATrackerForEachSource)
{
    folder.Add(kPhoneManager);
    folder.Add(L"alpha");
    folder.Add(L"scanner", {.category = 2});
    folder.Add(L"failing", {.fails = Operation::GetCategory});
    folder.Add(L"throwing", {.throws = Operation::GetCategory});
    folder.Add(L"sourceless", {.fails = Operation::QuerySource});
    Run();
    for (const std::wstring name : {kPhoneManager, L"alpha"}) {
        EXPECT_TRUE(trace.Await(Detecting(name))) << name;
        EXPECT_TRUE(folder.IsLoaded(name)) << name;
        EXPECT_EQ(folder.Count(name, Operation::Register), 1) << name;
    }
    for (const wchar_t* name : {L"scanner", L"failing", L"throwing", L"sourceless"}) {
        EXPECT_FALSE(folder.IsLoaded(name)) << name;
        EXPECT_EQ(folder.Count(name, Operation::Register), 0) << name;
        EXPECT_EQ(folder.Count(name, Operation::ShutDown), 1) << name;
        EXPECT_EQ(folder.References(name), 0) << name;
    }
    EXPECT_EQ(folder.Count(L"alpha", Operation::ShutDown), 1);
    EXPECT_EQ(folder.Count(kPhoneManager, Operation::ShutDown), 2)
        << "after the test and after the scan";
    EXPECT_EQ(tests::CountTrackerWindows(), 2);
}

TEST_F(Host, TakesAnyPluginOfThatNameForThePhoneManager)
{
    folder.Add(kPhoneManager, {.category = 2}); // but with the test plugin's identifier
    folder.Add(L"alpha");
    Run();
    EXPECT_TRUE(trace.Await(Detecting(L"alpha")));
    EXPECT_EQ(folder.Count(kPhoneManager, Operation::Register), 0);
    EXPECT_EQ(trace.Lines(), std::vector<std::wstring>{Detecting(L"alpha")});
}

TEST_F(Host, DoesNotPickUpAPluginThatComesAfterTheScan)
{
    folder.Add(kPhoneManager);
    Run();
    ASSERT_TRUE(trace.Await(Detecting(kPhoneManager)));
    folder.Add(L"late");
    EXPECT_TRUE(folder.EventsOf(L"late").empty());
    EXPECT_EQ(tests::CountTrackerWindows(), 1);
}

TEST_F(Host, EndsWhenTheFolderGoesBetweenTheTestAndTheScan)
{
    Behaviour behaviour;
    behaviour.during = [&](Operation operation) {
        if (operation == Operation::ShutDown) {
            std::filesystem::rename(folder.Path(), folder.Path().parent_path() / "elsewhere");
        }
    };
    folder.Add(kPhoneManager, behaviour);
    folder.Add(L"alpha");
    Run();
    EXPECT_EQ(folder.Count(kPhoneManager, Operation::ShutDown), 1);
    EXPECT_TRUE(folder.EventsOf(L"alpha").empty());
    EXPECT_EQ(tests::CountTrackerWindows(), 0);
    EXPECT_TRUE(trace.Lines().empty());
}

class MisbehavingPlugin : public Host, public testing::WithParamInterface<Operation>
{
};

TEST_P(MisbehavingPlugin, DoesNotKeepTheOthersFromBeingTracked)
{
    folder.Add(kPhoneManager);
    folder.Add(L"alpha", {.throws = GetParam()});
    folder.Add(L"beta");
    Run();
    EXPECT_TRUE(trace.Await(Detecting(kPhoneManager)));
    EXPECT_TRUE(trace.Await(Detecting(L"beta")));
}

INSTANTIATE_TEST_SUITE_P(EachOperation, MisbehavingPlugin,
                         testing::Values(Operation::Main, Operation::QueryDescriptor,
                                         Operation::GetValue, Operation::GetIdentifier,
                                         Operation::GetName, Operation::SetListEntry,
                                         Operation::QuerySource, Operation::QueryCategory,
                                         Operation::GetCategory, Operation::Register,
                                         Operation::ShutDown, Operation::ReleaseDescriptor,
                                         Operation::ReleaseSource));

TEST_F(Host, KeepsTheSourcesInTheOrderOfTheirPlugins)
{
    std::vector<std::wstring> expected;
    for (const wchar_t* name : {L"gamma", L"alpha", L"beta", L"delta"}) {
        folder.Add(name, {.value = static_cast<std::uint32_t>(expected.size())});
        expected.emplace_back(name);
    }
    PluginHost host;
    const std::vector<DeviceSource> sources = FindDeviceSources(host);
    // The listing of the folder sets the order in which the plugins are loaded, and so the order of the
    // sources.
    std::vector<std::wstring> loaded;
    for (const auto& [plugin, operation] : folder.Events()) {
        if (operation == Operation::SetListEntry) {
            loaded.push_back(plugin);
        }
    }
    ASSERT_EQ(sources.size(), 4U);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_EQ(sources[i].name, loaded[i]);
        EXPECT_EQ(sources[i].modulePath, L".\\moxplugins\\" + loaded[i] + L".mox");
        EXPECT_EQ(expected[sources[i].value], loaded[i]);
        EXPECT_FALSE(folder.IsLoaded(loaded[i]));
    }
}

TEST_F(Host, UnloadsWhatItLoadedWhenNoPluginHasASource)
{
    folder.Add(L"alpha", {.fails = Operation::QuerySource});
    folder.Add(L"beta", {.throws = Operation::QuerySource});
    PluginHost host;
    EXPECT_TRUE(FindDeviceSources(host).empty());
    for (const wchar_t* name : {L"alpha", L"beta"}) {
        EXPECT_FALSE(folder.IsLoaded(name)) << name;
        EXPECT_EQ(folder.References(name), 0) << name;
    }
    EXPECT_TRUE(host.plugins.Entries().empty());
}

} // namespace
} // namespace kestraboot
