// The results of the calls when memory runs out.
#include "tests/trackers/mox/memory_faults.h"

#include "foundation/text.h"
#include "tests/trackers/mox/device_reports.h"
#include "tests/trackers/mox/plugin_folder.h"
#include "trackers/mox/callback_interface.h"
#include "trackers/mox/plugin_host.h"
#include "trackers/mox/source_enumerator.h"
#include "trackers/mox/source_tracker.h"

#include <gtest/gtest.h>

#include <string>

namespace kestraboot
{
namespace
{

using tests::NoMemory;
using tests::PluginFolder;

/// Runs one call without memory.
template <typename Call>
auto WithoutMemory(Call&& call)
{
    const NoMemory none;
    return call();
}

TEST(WithoutMemory, AnEnumeratorCannotBeMade)
{
    const std::list<mox::PluginDescriptor> plugins(1);
    mox::IEnumSourceManager* sources = nullptr;
    EXPECT_EQ(WithoutMemory([&] {
                  return CreateSourceEnumerator(plugins, &sources);
              }),
              0xC0000006U);
    EXPECT_EQ(sources, nullptr);
}

TEST(WithoutMemory, SourceManagersHaveNoEnumerator)
{
    PluginFolder folder;
    PluginHost host;
    ASSERT_EQ(host.plugins.LoadPlugin(folder.Add(L"alpha")), mox::kSuccess);
    EXPECT_EQ(WithoutMemory([&] {
                  return host.managers.OpenSourceManagers();
              }),
              0xC000000BU);
    EXPECT_EQ(folder.References(L"alpha"), 0);
    host.plugins.UnloadAllPlugins();
}

TEST(WithoutMemory, APluginIsNotListedAndUnloadedAgain)
{
    PluginFolder folder;
    PluginList plugins;
    const auto alpha = folder.Add(L"alpha");
    const auto load = [&] {
        const NoMemory forAnEntry(sizeof(mox::PluginDescriptor));
        return plugins.LoadPlugin(alpha);
    };
    EXPECT_EQ(load(), 0xC0000006U);
    EXPECT_FALSE(folder.IsLoaded(L"alpha"));
    EXPECT_EQ(folder.References(L"alpha"), 0);
    EXPECT_TRUE(plugins.Entries().empty());
}

TEST(WithoutMemory, ANotificationIsLostAndTheNextOneIsNot)
{
    tests::DeviceReports reports;
    mox::ICallbackInterface* const callback = new CMOXCallbackInterface;
    callback->AddReference();
    mox::DeviceRecord record = {};
    record.size = mox::kDeviceRecordSize;
    CopyToField(record.deviceId, std::wstring(100, L'i'));
    EXPECT_EQ(WithoutMemory([&] {
                  return callback->Notify(0, &record);
              }),
              0xC0000006U);
    EXPECT_EQ(callback->Notify(0, &record), mox::kSuccess);
    EXPECT_EQ(reports.All().size(), 1U);
    callback->Release();
}

TEST(WithoutMemory, ASourceIsNotTracked)
{
    PluginFolder folder;
    const DeviceSource source = {L"alpha", {}, 0, L".\\moxplugins\\alpha.mox"};
    WithoutMemory([&] {
        StartSourceTracker(source);
        return 0;
    });
    EXPECT_EQ(folder.ThreadsAskedFor(), 0);
}

} // namespace
} // namespace kestraboot
