#include "trackers/mox/plugin_list.h"

#include "tests/support/import_patch.h"
#include "tests/trackers/mox/plugin_folder.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <atomic>
#include <cstring>
#include <memory>
#include <new>
#include <thread>

namespace kestraboot
{
namespace
{

using tests::Behaviour;
using tests::Operation;
using tests::PluginFolder;
using Operations = std::vector<Operation>;

const Operations kLoading = {Operation::Main,     Operation::QueryDescriptor,
                             Operation::GetValue, Operation::GetIdentifier,
                             Operation::GetName,  Operation::SetListEntry};

Behaviour Throwing(Operation operation)
{
    Behaviour behaviour;
    behaviour.throws = operation;
    return behaviour;
}

Behaviour Failing(Operation operation)
{
    Behaviour behaviour;
    behaviour.fails = operation;
    return behaviour;
}

class PluginLoading : public testing::Test
{
protected:
    PluginFolder folder;
    PluginList plugins;
};

TEST_F(PluginLoading, ListsThePluginAndLeavesItLoaded)
{
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"alpha")), mox::kSuccess);
    EXPECT_TRUE(folder.IsLoaded(L"alpha"));
    EXPECT_EQ(folder.EventsOf(L"alpha"), kLoading);
    EXPECT_EQ(folder.References(L"alpha"), 0);
    ASSERT_EQ(plugins.Entries().size(), 1U);
    const mox::PluginDescriptor& entry = plugins.Entries().front();
    EXPECT_STREQ(entry.name, L"alpha");
    EXPECT_STREQ(entry.modulePath, L".\\moxplugins\\alpha.mox");
    EXPECT_EQ(entry.value, 7U);
    EXPECT_NE(entry.identifier.data1, 0U);
}

TEST_F(PluginLoading, PassesThePluginItsOwnEntryWhichIsNeverMoved)
{
    ASSERT_EQ(plugins.LoadPlugin(folder.Add(L"alpha")), mox::kSuccess);
    const mox::PluginDescriptor* const entry = &plugins.Entries().front();
    EXPECT_EQ(folder.EntryOf(L"alpha"), entry);
    const auto beta = folder.Add(L"beta");
    ASSERT_EQ(plugins.LoadPlugin(beta), mox::kSuccess);
    ASSERT_EQ(plugins.LoadPlugin(folder.Add(L"gamma")), mox::kSuccess);
    ASSERT_EQ(plugins.UnloadPlugin(beta), mox::kSuccess);
    EXPECT_EQ(&plugins.Entries().front(), entry);
    EXPECT_EQ(folder.EntryOf(L"gamma"), &plugins.Entries().back());
    EXPECT_STREQ(folder.EntryOf(L"gamma")->name, L"gamma");
}

TEST_F(PluginLoading, OfALibraryThatIsInTheProcessSucceedsWithoutFurtherCalls)
{
    const auto alpha = folder.Add(L"alpha");
    ASSERT_EQ(plugins.LoadPlugin(alpha), mox::kSuccess);
    folder.ForgetEvents();
    PluginList others;
    EXPECT_EQ(others.LoadPlugin(alpha), mox::kSuccess);
    EXPECT_EQ(plugins.LoadPlugin(alpha), mox::kSuccess);
    EXPECT_TRUE(others.Entries().empty());
    EXPECT_EQ(plugins.Entries().size(), 1U);
    EXPECT_TRUE(folder.Events().empty());
    ASSERT_EQ(plugins.UnloadPlugin(alpha), mox::kSuccess);
    EXPECT_FALSE(folder.IsLoaded(L"alpha")) << "the second load added a reference to the library";
}

TEST_F(PluginLoading, OfAFileThatIsNoLibraryFails)
{
    const auto write = [&](const char* name, std::string_view contents) {
        std::ofstream(folder.Path() / name, std::ios::binary) << contents;
    };
    write("text.mox", "this is a letter, not a library");
    write("empty.mox", "");
    write("zeroes.mox", std::string(4096, '\0'));
    write("cut.mox", "MZ");
    std::filesystem::create_directory(folder.Path() / "folder.mox");
    for (const wchar_t* name : {L"text", L"empty", L"zeroes", L"cut", L"folder", L"missing"}) {
        EXPECT_EQ(plugins.LoadPlugin(PluginFolder::Named(name)), mox::kFailure) << name;
        EXPECT_FALSE(folder.IsLoaded(name)) << name;
    }
    const mox::PluginDescriptor withoutPath = {};
    EXPECT_EQ(plugins.LoadPlugin(withoutPath), mox::kFailure);
    EXPECT_TRUE(plugins.Entries().empty());
}

TEST_F(PluginLoading, OfALibraryWithoutTheEntryPointFailsAndFreesIt)
{
    std::filesystem::copy_file(tests::ProgramFolder() / "libwinpthread-1.dll",
                               folder.Path() / "alpha.mox");
    EXPECT_EQ(plugins.LoadPlugin(PluginFolder::Named(L"alpha")), mox::kFailure);
    EXPECT_FALSE(folder.IsLoaded(L"alpha"));
}

TEST_F(PluginLoading, OfALibraryThatDoesNotStartFails)
{
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"refuses-to-load")), mox::kFailure);
    EXPECT_FALSE(folder.IsLoaded(L"refuses-to-load"));
}

TEST_F(PluginLoading, WithoutAnObjectOrItsDescriptorFailsAndUnloads)
{
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"alpha", Failing(Operation::Main))), mox::kFailure);
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"beta", Failing(Operation::QueryDescriptor))),
              mox::kFailure);
    for (const wchar_t* name : {L"alpha", L"beta"}) {
        EXPECT_FALSE(folder.IsLoaded(name)) << name;
        EXPECT_EQ(folder.References(name), 0) << name;
    }
    EXPECT_TRUE(plugins.Entries().empty());
}

TEST_F(PluginLoading, OfAnIdentifierThatIsListedIsRefusedAndUnloaded)
{
    constexpr mox::Identifier kSame = {1, 2, 3, {4}};
    Behaviour behaviour;
    behaviour.identifier = &kSame;
    ASSERT_EQ(plugins.LoadPlugin(folder.Add(L"alpha", behaviour)), mox::kSuccess);
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"beta", behaviour)), mox::kFailure);
    EXPECT_TRUE(folder.IsLoaded(L"alpha"));
    EXPECT_FALSE(folder.IsLoaded(L"beta"));
    EXPECT_EQ(folder.References(L"beta"), 0);
    EXPECT_EQ(folder.Count(L"beta", Operation::SetListEntry), 0);
    ASSERT_EQ(plugins.Entries().size(), 1U);
    EXPECT_STREQ(plugins.Entries().front().name, L"alpha");
}

class ThrowingWhileLoading : public PluginLoading, public testing::WithParamInterface<Operation>
{
};

TEST_P(ThrowingWhileLoading, BecomesAStatusAndThePluginIsUnloaded)
{
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"alpha", Throwing(GetParam()))), mox::kException);
    EXPECT_FALSE(folder.IsLoaded(L"alpha"));
    EXPECT_EQ(folder.References(L"alpha"), 0);
    EXPECT_TRUE(plugins.Entries().empty());
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"beta")), mox::kSuccess) << "the host did not continue";
    EXPECT_EQ(std::uncaught_exceptions(), 0);
}

INSTANTIATE_TEST_SUITE_P(EachOperation, ThrowingWhileLoading,
                         testing::Values(Operation::Main, Operation::QueryDescriptor,
                                         Operation::GetValue, Operation::GetIdentifier,
                                         Operation::GetName, Operation::SetListEntry,
                                         Operation::ReleaseDescriptor));

TEST_F(PluginLoading, LeavesFieldsThatThePluginDoesNotSetAtZero)
{
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"name", Failing(Operation::GetName))), mox::kSuccess);
    EXPECT_STREQ(plugins.Entries().back().name, L"");
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"value", Failing(Operation::GetValue))), mox::kSuccess);
    EXPECT_EQ(plugins.Entries().back().value, 0U);
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"identifier", Failing(Operation::GetIdentifier))),
              mox::kSuccess);
    EXPECT_EQ(plugins.Entries().back().identifier.data1, 0U);
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"entry", Failing(Operation::SetListEntry))), mox::kSuccess);
    EXPECT_EQ(plugins.Entries().size(), 4U);
}

TEST_F(PluginLoading, LeavesFieldsThatASuccessfulAnswerDoesNotWriteAtZero)
{
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"name", {.silent = Operation::GetName})), mox::kSuccess);
    EXPECT_STREQ(plugins.Entries().back().name, L"");
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"value", {.silent = Operation::GetValue})), mox::kSuccess);
    EXPECT_EQ(plugins.Entries().back().value, 0U);
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"identifier", {.silent = Operation::GetIdentifier})),
              mox::kSuccess);
    constexpr mox::Identifier kZero = {};
    EXPECT_EQ(std::memcmp(&plugins.Entries().back().identifier, &kZero, sizeof kZero), 0);
}

TEST_F(PluginLoading, TreatsAnInterfaceThatIsPromisedAndNotReturnedAsNone)
{
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"alpha", {.silent = Operation::QueryDescriptor})),
              mox::kFailure);
    EXPECT_FALSE(folder.IsLoaded(L"alpha"));
    EXPECT_EQ(folder.References(L"alpha"), 0);
}

TEST_F(PluginLoading, KeepsNamesOf259CharactersWholeAndCutsLongerOnes)
{
    const auto nameOf = [&](const wchar_t* plugin, std::size_t length, bool terminated) {
        Behaviour behaviour;
        behaviour.name = std::wstring(length, L'n');
        behaviour.nameWithoutTerminator = !terminated;
        EXPECT_EQ(plugins.LoadPlugin(folder.Add(plugin, behaviour)), mox::kSuccess);
        EXPECT_EQ(plugins.Entries().back().modulePath,
                  L".\\moxplugins\\" + std::wstring(plugin) + L".mox");
        return std::wstring(plugins.Entries().back().name);
    };
    EXPECT_EQ(nameOf(L"a", 258, true), std::wstring(258, L'n'));
    EXPECT_EQ(nameOf(L"b", 259, true), std::wstring(259, L'n'));
    EXPECT_EQ(nameOf(L"c", 260, false), std::wstring(259, L'n'));
    // A plugin that writes past its field overwrites the field of the path, which the host fills
    // afterwards.
    EXPECT_EQ(nameOf(L"d", 400, true), std::wstring(259, L'n'));
}

TEST_F(PluginLoading, BoundsAPathThatIsNotTerminated)
{
    struct {
        mox::PluginDescriptor wanted;
        wchar_t after[4];
    } memory = {{}, L".mo"};
    std::wmemset(memory.wanted.modulePath, L'x', 260);
    EXPECT_EQ(plugins.LoadPlugin(memory.wanted), mox::kFailure);
    EXPECT_EQ(plugins.UnloadPlugin(memory.wanted), mox::kSuccess);
}

TEST_F(PluginLoading, TriesTheFileAsDataFirstWithoutErrorBoxes)
{
    UINT modeOfTest = 0;
    UINT modeOfLoad = 0;
    DWORD flags = 0;
    const FAKE_IMPORT(LoadLibraryExW) test([&](const wchar_t* path, HANDLE file, DWORD given) {
        modeOfTest = ::GetErrorMode();
        flags = given;
        return ::LoadLibraryExA(std::filesystem::path(path).string().c_str(), file, given);
    });
    const FAKE_IMPORT(LoadLibraryW) load([&](const wchar_t* path) {
        modeOfLoad = ::GetErrorMode();
        return ::LoadLibraryA(std::filesystem::path(path).string().c_str());
    });
    ::SetErrorMode(SEM_NOGPFAULTERRORBOX);
    EXPECT_EQ(plugins.LoadPlugin(folder.Add(L"alpha")), mox::kSuccess);
    EXPECT_EQ(::GetErrorMode(), static_cast<UINT>(SEM_NOGPFAULTERRORBOX));
    EXPECT_EQ(flags, 2U);
    EXPECT_EQ(modeOfTest, 0x8001U);
    EXPECT_EQ(modeOfLoad, 0x8001U);
    EXPECT_EQ(plugins.LoadPlugin(PluginFolder::Named(L"missing")), mox::kFailure);
    EXPECT_EQ(load.Calls(), 1) << "a file that cannot be mapped was loaded";
    EXPECT_EQ(::GetErrorMode(), static_cast<UINT>(SEM_NOGPFAULTERRORBOX));
    ::SetErrorMode(0);
}

TEST_F(PluginLoading, OnManyThreadsLeavesTheErrorModeUnchanged)
{
    std::atomic<int> wrongMode = 0;
    const auto load = [&](const wchar_t*) -> HMODULE {
        ::SwitchToThread();
        wrongMode += ::GetErrorMode() == 0x8001 ? 0 : 1;
        return nullptr;
    };
    const FAKE_IMPORT(LoadLibraryExW) test([&](const wchar_t* path, HANDLE, DWORD) -> HMODULE {
        load(path);
        return ::GetModuleHandleA("kernel32.dll");
    });
    const FAKE_IMPORT(FreeLibrary) release([](HMODULE) -> BOOL {
        return TRUE;
    });
    const FAKE_IMPORT(LoadLibraryW) real(load);
    ::SetErrorMode(SEM_NOGPFAULTERRORBOX);
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&] {
            PluginList own;
            for (int count = 0; count < 200; ++count) {
                EXPECT_EQ(own.LoadPlugin(PluginFolder::Named(L"missing")), mox::kFailure);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(::GetErrorMode(), static_cast<UINT>(SEM_NOGPFAULTERRORBOX));
    EXPECT_EQ(wrongMode, 0);
    ::SetErrorMode(0);
}

class PluginUnloading : public PluginLoading
{
};

TEST_F(PluginUnloading, ShutsThePluginDownFreesItAndTakesItFromTheList)
{
    const auto alpha = folder.Add(L"alpha");
    ASSERT_EQ(plugins.LoadPlugin(alpha), mox::kSuccess);
    folder.ForgetEvents();
    EXPECT_EQ(plugins.UnloadPlugin(alpha), mox::kSuccess);
    EXPECT_EQ(folder.EventsOf(L"alpha"),
              (Operations{Operation::Main, Operation::QueryDescriptor, Operation::ShutDown}));
    EXPECT_FALSE(folder.IsLoaded(L"alpha"));
    EXPECT_EQ(folder.References(L"alpha"), 0);
    EXPECT_TRUE(plugins.Entries().empty());
}

TEST_F(PluginUnloading, OfALibraryThatIsNotInTheProcessSucceeds)
{
    EXPECT_EQ(plugins.UnloadPlugin(PluginFolder::Named(L"missing")), mox::kSuccess);
}

TEST_F(PluginUnloading, FindsTheEntryByTheExactSpellingOfItsPath)
{
    ASSERT_EQ(plugins.LoadPlugin(folder.Add(L"alpha")), mox::kSuccess);
    EXPECT_EQ(plugins.UnloadPlugin(PluginFolder::Named(L"ALPHA")), mox::kSuccess);
    EXPECT_FALSE(folder.IsLoaded(L"alpha")) << "Windows compares without case";
    EXPECT_EQ(plugins.Entries().size(), 1U);
}

TEST_F(PluginUnloading, FreesAPluginThatThrowsOrReturnsNothing)
{
    for (const auto& [operation, status] : {std::pair(Operation::Main, mox::kException),
                                            std::pair(Operation::QueryDescriptor, mox::kException),
                                            std::pair(Operation::ShutDown, mox::kException),
                                            std::pair(Operation::ReleaseDescriptor, mox::kException)}) {
        bool now = false;
        Behaviour behaviour;
        behaviour.during = [&now, wanted = operation](Operation current) {
            if (now && current == wanted) {
                throw 42;
            }
        };
        const std::wstring name = L"throws" + std::to_wstring(static_cast<int>(operation));
        const auto plugin = folder.Add(name, behaviour);
        ASSERT_EQ(plugins.LoadPlugin(plugin), mox::kSuccess);
        now = true;
        EXPECT_EQ(plugins.UnloadPlugin(plugin), status) << name;
        EXPECT_FALSE(folder.IsLoaded(name)) << name;
        EXPECT_EQ(folder.References(name), 0) << name;
        EXPECT_TRUE(plugins.Entries().empty()) << name;
    }
    const auto refusing = folder.Add(L"refusing", Failing(Operation::ShutDown));
    ASSERT_EQ(plugins.LoadPlugin(refusing), mox::kSuccess);
    EXPECT_EQ(plugins.UnloadPlugin(refusing), mox::kSuccess);
    EXPECT_FALSE(folder.IsLoaded(L"refusing"));
}

TEST_F(PluginUnloading, OfAllReturnsTheirNumber)
{
    EXPECT_EQ(plugins.UnloadAllPlugins(), 0U);
    for (const wchar_t* name : {L"alpha", L"beta", L"gamma"}) {
        ASSERT_EQ(plugins.LoadPlugin(folder.Add(name)), mox::kSuccess);
    }
    EXPECT_EQ(plugins.UnloadAllPlugins(), 3U);
    EXPECT_TRUE(plugins.Entries().empty());
    for (const wchar_t* name : {L"alpha", L"beta", L"gamma"}) {
        EXPECT_FALSE(folder.IsLoaded(name)) << name;
        EXPECT_EQ(folder.Count(name, Operation::ShutDown), 1) << name;
    }
}

TEST_F(PluginUnloading, OfAllEndsEvenIfSomebodyElseFreedALibrary)
{
    ASSERT_EQ(plugins.LoadPlugin(folder.Add(L"alpha")), mox::kSuccess);
    ASSERT_EQ(plugins.LoadPlugin(folder.Add(L"beta")), mox::kSuccess);
    ::FreeLibrary(::GetModuleHandleW(L".\\moxplugins\\alpha.mox"));
    EXPECT_EQ(plugins.UnloadAllPlugins(), 2U);
    EXPECT_TRUE(plugins.Entries().empty());
    EXPECT_FALSE(folder.IsLoaded(L"beta"));
}

TEST_F(PluginLoading, FindsAPluginByItsIdentifier)
{
    ASSERT_EQ(plugins.LoadPlugin(folder.Add(L"alpha")), mox::kSuccess);
    ASSERT_EQ(plugins.LoadPlugin(folder.Add(L"beta")), mox::kSuccess);
    const mox::PluginDescriptor* found = nullptr;
    EXPECT_EQ(plugins.FindPluginById(plugins.Entries().back().identifier, &found), 0U);
    EXPECT_EQ(found, &plugins.Entries().back());

    mox::Identifier other = plugins.Entries().back().identifier;
    other.data4[7] = static_cast<std::uint8_t>(other.data4[7] + 1);
    EXPECT_EQ(plugins.FindPluginById(other, &found), 0x40000001U);
    EXPECT_EQ(found, &plugins.Entries().back()) << "the output was changed";
}

} // namespace
} // namespace kestraboot
