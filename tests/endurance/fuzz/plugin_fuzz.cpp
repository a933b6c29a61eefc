// A folder of plugins with faults of every kind: the list, the result of each operation, and the
// complete release of each plugin.
#include "tests/endurance/fuzz/fake_plugins.h"
#include "tests/endurance/fuzz/fuzz.h"
#include "trackers/mox/callback_interface.h"
#include "trackers/mox/plugin_host.h"

#include <gtest/gtest.h>

#include <vector>

namespace kestraboot::fuzz
{
namespace
{

void FillFolder(Random& random, std::list<FakePlugin>& plugins)
{
    plugins.clear();
    const std::size_t count = random.Between(1, 6);
    for (std::size_t i = 0; i < count; ++i) {
        FakePlugin& plugin = plugins.emplace_back();
        plugin.path = L".\\moxplugins\\" + std::to_wstring(i) + L".mox";
        plugin.name = random.Text();
        plugin.value = random.Bits();
        plugin.identifier = static_cast<std::uint32_t>(random.Below(10)); // some twice
        plugin.category = random.Pick({0U, 1U, 1U, 2U});
        plugin.loadFault =
            random.Chance(50) ? LoadFault::None : static_cast<LoadFault>(random.Below(16));
        plugin.sourceFault =
            random.Chance(50) ? SourceFault::None : static_cast<SourceFault>(random.Below(8));
    }
}

mox::PluginDescriptor DescriptorOf(const FakePlugin& plugin)
{
    mox::PluginDescriptor descriptor = {};
    plugin.path.copy(descriptor.modulePath, 259);
    return descriptor;
}

mox::Identifier IdentifierOf(const FakePlugin& plugin)
{
    return {plugin.loadFault == LoadFault::WritesNothing ? 0 : plugin.identifier, 0, 0, {}};
}

/// The listed plugins, in order, as they must be.
class PluginModel
{
public:
    mox::Status Load(FakePlugin& plugin)
    {
        switch (plugin.loadFault) {
        case LoadFault::NoFile:
        case LoadFault::NoLibrary:
        case LoadFault::NoEntry:
        case LoadFault::NoObject:
        case LoadFault::NoInterface:
        case LoadFault::TrueWithoutInterface:
            return 0xC0000002;
        case LoadFault::MainThrows:
        case LoadFault::QueryThrows:
        case LoadFault::ValueThrows:
        case LoadFault::IdentifierThrows:
        case LoadFault::NameThrows:
            return 0xC0000005;
        default:
            break;
        }
        if (IsListed(plugin)) {
            return 0; // is in the process already
        }
        for (const FakePlugin* const before : listed) {
            if (IdentifierOf(*before).data1 == IdentifierOf(plugin).data1) {
                return 0xC0000002;
            }
        }
        if (plugin.loadFault == LoadFault::EntryThrows) {
            return 0xC0000005;
        }
        listed.push_back(&plugin);
        return 0;
    }

    mox::Status Open()
    {
        open.clear();
        mox::Status failure = 0;
        for (FakePlugin* const plugin : listed) {
            if (plugin->sourceFault == SourceFault::NoManager) {
                failure = 0xC0000002;
            } else if (plugin->sourceFault == SourceFault::ManagerThrows) {
                failure = 0xC0000005;
            } else {
                open.push_back(plugin);
            }
        }
        return open.empty() ? failure : 0;
    }

    /// The result of an operation on a source before the plugin is asked; null if it is to be asked.
    FakePlugin* Find(std::uint32_t identifier, mox::Status& status) const
    {
        for (FakePlugin* const plugin : open) {
            if (IdentifierOf(*plugin).data1 == identifier) {
                return plugin;
            }
        }
        status = 0xC000000A;
        for (const FakePlugin* const plugin : listed) {
            status = IdentifierOf(*plugin).data1 == identifier ? 0xC000000C : status;
        }
        return nullptr;
    }

    [[nodiscard]] bool IsListed(const FakePlugin& plugin) const
    {
        return std::find(listed.begin(), listed.end(), &plugin) != listed.end();
    }

    std::vector<FakePlugin*> listed;
    std::vector<FakePlugin*> open;
};

void ExpectSameList(const std::list<mox::PluginDescriptor>& entries, const PluginModel& model)
{
    ASSERT_EQ(entries.size(), model.listed.size());
    auto entry = entries.begin();
    for (const FakePlugin* const plugin : model.listed) {
        const bool nothing = plugin->loadFault == LoadFault::WritesNothing;
        EXPECT_EQ(entry->value, nothing ? 0 : plugin->value);
        EXPECT_EQ(entry->identifier.data1, IdentifierOf(*plugin).data1);
        EXPECT_EQ(entry->name, nothing ? L"" : plugin->name.substr(0, 259));
        EXPECT_EQ(entry->modulePath, plugin->path);
        EXPECT_EQ(&*entry, plugin->entry);
        ++entry;
    }
}

void ExpectSourceAnswers(const PluginHost& host, const PluginModel& model, std::uint32_t identifier)
{
    CMOXCallbackInterface callback;
    const mox::Identifier id = {identifier, 0, 0, {}};
    mox::Status expected = 0;
    FakePlugin* const plugin = model.Find(identifier, expected);
    const SourceFault fault = plugin == nullptr ? SourceFault::None : plugin->sourceFault;

    std::uint32_t category = 77;
    const mox::Status ofCategory = fault == SourceFault::CategoryFails    ? 0xC0001234
                                   : fault == SourceFault::CategoryThrows ? 0xC0000005
                                                                          : expected;
    EXPECT_EQ(host.managers.GetSourceCategory(id, &category), ofCategory);
    EXPECT_EQ(category, ofCategory == 0 ? plugin->category : 77);

    const mox::Status ofRegistration = fault == SourceFault::RegisterFails    ? 0xC0004321
                                       : fault == SourceFault::RegisterThrows ? 0xC0000005
                                                                              : expected;
    EXPECT_EQ(host.managers.RegisterSourceCallback(id, &callback), ofRegistration);
    if (ofRegistration == 0) {
        EXPECT_EQ(plugin->callbacks, 1);
        EXPECT_EQ(host.managers.UnregisterSourceCallback(id, &callback), mox::kSuccess);
    }
}

TEST(PluginFuzz, EveryOperationAnswersLikeTheModelAndNothingLeaks)
{
    FakePlugins folder;
    Fuzz({.usual = 5'000}, [&](Random& random) {
        FillFolder(random, folder.plugins);
        folder.withErrorBoxes = 0;
        const UINT errorMode = ::GetErrorMode();
        PluginModel model;
        PluginHost host;
        for (FakePlugin& plugin : folder.plugins) {
            for (int times = random.Chance(10) ? 2 : 1; times > 0; --times) {
                EXPECT_EQ(host.plugins.LoadPlugin(DescriptorOf(plugin)), model.Load(plugin))
                    << "fault " << static_cast<int>(plugin.loadFault);
            }
            EXPECT_EQ(plugin.loads, model.IsListed(plugin) ? 1 : 0);
            EXPECT_EQ(plugin.objects, 0);
        }
        ExpectSameList(host.plugins.Entries(), model);

        EXPECT_EQ(host.managers.OpenSourceManagers(), model.Open());
        for (std::uint32_t identifier = 0; identifier < 10; ++identifier) {
            ExpectSourceAnswers(host, model, identifier);
        }
        EXPECT_EQ(host.managers.CloseSourceManagers(), mox::kSuccess);
        EXPECT_EQ(host.plugins.UnloadAllPlugins(), model.listed.size());
        for (const FakePlugin& plugin : folder.plugins) {
            EXPECT_EQ(plugin.loads, 0);
            EXPECT_EQ(plugin.objects, 0);
            EXPECT_EQ(plugin.callbacks, 0);
            EXPECT_EQ(plugin.shutDowns, model.IsListed(plugin) ? 1 : 0);
        }
        EXPECT_EQ(folder.withErrorBoxes, 0);
        EXPECT_EQ(::GetErrorMode(), errorMode);
    });
}

} // namespace
} // namespace kestraboot::fuzz
