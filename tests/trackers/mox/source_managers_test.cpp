#include "trackers/mox/plugin_host.h"

#include "tests/support/import_patch.h"
#include "tests/trackers/mox/plugin_folder.h"
#include "trackers/mox/callback_interface.h"
#include "trackers/mox/plugin_module.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <cstdlib>
#include <new>

namespace kestraboot
{
namespace
{

using tests::Behaviour;
using tests::Operation;
using tests::PluginFolder;

class OpenSources : public testing::Test
{
protected:
    OpenSources() { callback->AddReference(); }
    ~OpenSources() override
    {
        host.managers.CloseSourceManagers();
        EXPECT_EQ(callback->Release(), 0U) << "a reference to the callback is left";
        host.plugins.UnloadAllPlugins();
    }

    /// Loads a plugin and returns its identifier.
    mox::Identifier Load(const wchar_t* plugin, Behaviour behaviour = {})
    {
        EXPECT_EQ(host.plugins.LoadPlugin(folder.Add(plugin, std::move(behaviour))), mox::kSuccess);
        return host.plugins.Entries().back().identifier;
    }

    PluginFolder folder;
    PluginHost host;
    mox::ICallbackInterface* callback = new CMOXCallbackInterface;
};

TEST_F(OpenSources, AreMadeForEachPluginAndReleased)
{
    Load(L"alpha");
    Load(L"beta");
    EXPECT_EQ(host.managers.OpenSourceManagers(), mox::kSuccess);
    EXPECT_EQ(folder.References(L"alpha"), 1);
    EXPECT_EQ(folder.References(L"beta"), 1);
    EXPECT_EQ(host.managers.OpenSourceManagers(), mox::kSuccess) << "opened again";
    EXPECT_EQ(folder.References(L"alpha"), 1);
    EXPECT_EQ(host.managers.CloseSourceManagers(), mox::kSuccess);
    EXPECT_EQ(folder.References(L"alpha"), 0);
    EXPECT_EQ(folder.References(L"beta"), 0);
    EXPECT_EQ(host.managers.CloseSourceManagers(), mox::kSuccess) << "closed again";
}

TEST_F(OpenSources, OfNoPluginsAreNone)
{
    EXPECT_EQ(host.managers.OpenSourceManagers(), mox::kSuccess);
}

TEST_F(OpenSources, LeaveOutAPluginWithoutOne)
{
    Behaviour without;
    without.fails = Operation::QuerySource;
    const mox::Identifier alpha = Load(L"alpha", without);
    EXPECT_EQ(host.managers.OpenSourceManagers(), mox::kFailure) << "no plugin has a source manager";
    const mox::Identifier beta = Load(L"beta");
    EXPECT_EQ(host.managers.OpenSourceManagers(), mox::kSuccess);
    std::uint32_t category = 99;
    EXPECT_EQ(host.managers.GetSourceCategory(alpha, &category), mox::kSourceManagerNotOpen);
    EXPECT_EQ(category, 99U);
    EXPECT_EQ(host.managers.GetSourceCategory(beta, &category), mox::kSuccess);
    EXPECT_EQ(folder.References(L"alpha"), 0);
}

TEST_F(OpenSources, AreNotMadeWhenThePluginThrows)
{
    int number = 0;
    for (const Operation operation :
         {Operation::Main, Operation::QuerySource, Operation::ReleaseDescriptor}) {
        bool now = false;
        Behaviour behaviour;
        behaviour.during = [&now, operation](Operation current) {
            if (now && current == operation) {
                throw 42;
            }
        };
        const std::wstring name = L"throws" + std::to_wstring(number++);
        Load(name.c_str(), behaviour);
        now = true;
        EXPECT_EQ(host.managers.OpenSourceManagers(), mox::kException) << name;
        EXPECT_EQ(folder.References(name), 0) << name;
        now = false;
        host.plugins.UnloadAllPlugins();
    }
}

TEST_F(OpenSources, AreClosedEvenIfAReleaseThrows)
{
    bool now = false;
    Behaviour behaviour;
    behaviour.during = [&now](Operation current) {
        if (now && current == Operation::ReleaseSource) {
            throw 42;
        }
    };
    Load(L"alpha", behaviour);
    Load(L"beta");
    ASSERT_EQ(host.managers.OpenSourceManagers(), mox::kSuccess);
    now = true;
    EXPECT_EQ(host.managers.CloseSourceManagers(), mox::kException);
    EXPECT_EQ(folder.References(L"alpha"), 0);
    EXPECT_EQ(folder.References(L"beta"), 0);
    now = false;
}

TEST_F(OpenSources, ReturnTheirCategory)
{
    Behaviour other;
    other.category = 5;
    const mox::Identifier alpha = Load(L"alpha");
    const mox::Identifier beta = Load(L"beta", other);
    ASSERT_EQ(host.managers.OpenSourceManagers(), mox::kSuccess);
    folder.ForgetEvents();
    std::uint32_t category = 0;
    EXPECT_EQ(host.managers.GetSourceCategory(alpha, &category), mox::kSuccess);
    EXPECT_EQ(category, 1U);
    EXPECT_EQ(host.managers.GetSourceCategory(beta, &category), mox::kSuccess);
    EXPECT_EQ(category, 5U);
    EXPECT_EQ(folder.EventsOf(L"alpha"),
              (std::vector<Operation>{Operation::QueryCategory, Operation::GetCategory}));
    EXPECT_EQ(folder.References(L"alpha"), 1);
}

TEST_F(OpenSources, AreDistinguishedFromUnknownAndFromClosedOnes)
{
    const mox::Identifier alpha = Load(L"alpha");
    constexpr mox::Identifier kUnknown = {9, 9, 9, {9}};
    std::uint32_t category = 99;
    EXPECT_EQ(host.managers.GetSourceCategory(kUnknown, &category), 0xC000000AU);
    EXPECT_EQ(host.managers.GetSourceCategory(alpha, &category), 0xC000000CU);
    EXPECT_EQ(host.managers.RegisterSourceCallback(alpha, callback), 0xC000000CU);
    EXPECT_EQ(host.managers.UnregisterSourceCallback(alpha, callback), 0xC000000CU);
    ASSERT_EQ(host.managers.OpenSourceManagers(), mox::kSuccess);
    EXPECT_EQ(host.managers.GetSourceCategory(kUnknown, &category), 0xC000000AU);
    EXPECT_EQ(host.managers.RegisterSourceCallback(kUnknown, callback), 0xC000000AU);
    EXPECT_EQ(host.managers.UnregisterSourceCallback(kUnknown, callback), 0xC000000AU);
    EXPECT_EQ(host.managers.GetSourceCategory(alpha, nullptr), 0xC000000AU);
    EXPECT_EQ(host.managers.RegisterSourceCallback(alpha, nullptr), 0xC000000AU);
    EXPECT_EQ(host.managers.UnregisterSourceCallback(alpha, nullptr), 0xC000000AU);
    EXPECT_EQ(category, 99U) << "the output was changed";
    host.managers.CloseSourceManagers();
    EXPECT_EQ(host.managers.GetSourceCategory(alpha, &category), 0xC000000CU);
}

TEST_F(OpenSources, WhoseCategoryFailsOrThrowsLeaveTheOutputUnchanged)
{
    const std::pair<Behaviour, mox::Status> cases[] = {
        {{.fails = Operation::GetCategory}, mox::kFailure},
        {{.fails = Operation::QueryCategory}, mox::kFailure},
        {{.throws = Operation::GetCategory}, mox::kException},
        {{.throws = Operation::QueryCategory}, mox::kException},
        {{.throws = Operation::ReleaseSource}, mox::kException},
    };
    int number = 0;
    for (const auto& [behaviour, status] : cases) {
        const std::wstring name = L"plugin" + std::to_wstring(number++);
        const mox::Identifier identifier = Load(name.c_str(), behaviour);
        ASSERT_EQ(host.managers.OpenSourceManagers(), mox::kSuccess);
        std::uint32_t category = 99;
        EXPECT_EQ(host.managers.GetSourceCategory(identifier, &category), status) << name;
        EXPECT_EQ(category, 99U) << name;
        EXPECT_EQ(folder.References(name), 1) << name;
    }
}

TEST_F(OpenSources, ThatSucceedAndWriteNoCategoryAreOfNone)
{
    const mox::Identifier alpha = Load(L"alpha", {.silent = Operation::GetCategory});
    ASSERT_EQ(host.managers.OpenSourceManagers(), mox::kSuccess);
    std::uint32_t category = 99;
    EXPECT_EQ(host.managers.GetSourceCategory(alpha, &category), mox::kSuccess);
    EXPECT_EQ(category, 0U);
}

TEST_F(OpenSources, ThatArePromisedAndNotReturnedAreNone)
{
    const mox::Identifier alpha = Load(L"alpha", {.silent = Operation::QueryCategory});
    ASSERT_EQ(host.managers.OpenSourceManagers(), mox::kSuccess);
    std::uint32_t category = 99;
    EXPECT_EQ(host.managers.GetSourceCategory(alpha, &category), mox::kFailure);
    Load(L"beta", {.silent = Operation::QuerySource});
    host.managers.CloseSourceManagers();
    host.plugins.UnloadPlugin(PluginFolder::Named(L"alpha"));
    EXPECT_EQ(host.managers.OpenSourceManagers(), mox::kFailure) << "no plugin has a source manager";
}

TEST_F(OpenSources, AcceptACallbackAndReturnIt)
{
    const mox::Identifier alpha = Load(L"alpha");
    ASSERT_EQ(host.managers.OpenSourceManagers(), mox::kSuccess);
    EXPECT_EQ(host.managers.RegisterSourceCallback(alpha, callback), mox::kSuccess);
    EXPECT_EQ(callback->AddReference(), 3U) << "the test's, the plugin's, and this one";
    callback->Release();
    EXPECT_EQ(host.managers.UnregisterSourceCallback(alpha, callback), mox::kSuccess);
    EXPECT_EQ(callback->AddReference(), 2U);
    callback->Release();
}

TEST_F(OpenSources, ReturnTheStatusOfThePluginForACallback)
{
    const mox::Identifier refuses = Load(L"refuses", {.fails = Operation::Register});
    const mox::Identifier throws = Load(L"throws", {.throws = Operation::Register});
    const mox::Identifier keeps = Load(L"keeps", {.throws = Operation::Unregister});
    const mox::Identifier grumbles = Load(L"grumbles", {.fails = Operation::Unregister});
    ASSERT_EQ(host.managers.OpenSourceManagers(), mox::kSuccess);
    EXPECT_EQ(host.managers.RegisterSourceCallback(refuses, callback), mox::kFailure);
    EXPECT_EQ(host.managers.RegisterSourceCallback(throws, callback), mox::kException);
    EXPECT_EQ(host.managers.RegisterSourceCallback(keeps, callback), mox::kSuccess);
    EXPECT_EQ(host.managers.RegisterSourceCallback(grumbles, callback), mox::kSuccess);
    EXPECT_EQ(host.managers.UnregisterSourceCallback(keeps, callback), mox::kException);
    EXPECT_EQ(host.managers.UnregisterSourceCallback(grumbles, callback), mox::kFailure);
}

TEST_F(OpenSources, HaveNoOtherOperationCalled)
{
    const mox::Identifier alpha = Load(L"alpha");
    ASSERT_EQ(host.managers.OpenSourceManagers(), mox::kSuccess);
    std::uint32_t category = 0;
    static_cast<void>(host.managers.GetSourceCategory(alpha, &category));
    static_cast<void>(host.managers.RegisterSourceCallback(alpha, callback));
    host.managers.UnregisterSourceCallback(alpha, callback);
    EXPECT_EQ(folder.Count(L"alpha", Operation::Reserved), 0);
    EXPECT_EQ(folder.Count(L"alpha", Operation::QueryOther), 0);
}

TEST_F(OpenSources, AreMadeOfALoadedLibraryAlone)
{
    const auto alpha = folder.Add(L"alpha");
    PluginReference<mox::ISourceManager> source;
    EXPECT_EQ(CreatePluginObject(alpha.modulePath, mox::kSourceManagerNumber, source), mox::kFailure);
    EXPECT_FALSE(folder.IsLoaded(L"alpha"));
    ASSERT_EQ(host.plugins.LoadPlugin(alpha), mox::kSuccess);
    EXPECT_EQ(CreatePluginObject(alpha.modulePath, 12, source), mox::kFailure) << "no such interface";
    EXPECT_EQ(CreatePluginObject(L"kernel32.dll", mox::kSourceManagerNumber, source), mox::kFailure);
    EXPECT_FALSE(source);
    EXPECT_EQ(CreatePluginObject(alpha.modulePath, mox::kSourceManagerNumber, source), mox::kSuccess);
    EXPECT_TRUE(source);
    EXPECT_EQ(folder.References(L"alpha"), 1);
    EXPECT_EQ(source.Release(), mox::kSuccess);
    EXPECT_EQ(folder.References(L"alpha"), 0);
}

} // namespace
} // namespace kestraboot
