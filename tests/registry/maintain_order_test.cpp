#include "tests/registry/handler.h"
#include "tests/support/process_end.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/spawn_recorder.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trace_recorder.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct MaintainedOrder : testing::Test {
    MaintainedOrder() { MakeKey(HKEY_LOCAL_MACHINE, kRunKey); }
    static auto RunValue() { return StoredText(HKEY_LOCAL_MACHINE, kRunKey, kRunValue); }
    RegistrySandbox sandbox;
    TempFolder folder;
    SpawnRecorder spawns;
    TraceRecorder trace;
    OpenHandler handler;
};

TEST_F(MaintainedOrder, PointsTheAutoRunEntryAtTheRunningProxy)
{
    RegisterSample(folder.Path(), L"A");
    RegisterSample(folder.Path(), L"B");
    const SampleApplication own = RegisterOwnSample(folder.Path(), L"C");
    handler.MaintainOrder();
    EXPECT_EQ(RunValue(), L'"' + own.proxyPath + L'"');
    EXPECT_EQ(handler.Names(), (Names{L"A", L"B", L"C"})); // not reordered
    EXPECT_TRUE(trace.Lines().empty());
    EXPECT_TRUE(spawns.Calls().empty());
}

TEST_F(MaintainedOrder, PointsTheAutoRunEntryAtTheFirstProxyIfTheRunningProgramIsNone)
{
    const SampleApplication first = RegisterSample(folder.Path(), L"A");
    RegisterSample(folder.Path(), L"B");
    PutText(HKEY_LOCAL_MACHINE, kRunKey, kRunValue, L"\"C:\\another.exe\"");
    handler.MaintainOrder();
    EXPECT_EQ(RunValue(), L'"' + first.proxyPath + L'"');
}

TEST_F(MaintainedOrder, WritesTheProxysPathAsItIsRegistered)
{
    const SampleApplication own = RegisterOwnSample(folder.Path(), L"A");
    std::wstring other = own.proxyPath;
    other[0] = static_cast<wchar_t>(other[0] ^ 0x20); // the other case of the drive letter
    PutText(HKEY_LOCAL_MACHINE, own.keyPath, L"ProxyPath", other);
    handler.MaintainOrder();
    EXPECT_EQ(RunValue(), L'"' + other + L'"');
}

TEST_F(MaintainedOrder, ReloadsTheList)
{
    RegisterSample(folder.Path(), L"A");
    handler.applications.resize(5);
    handler.MaintainOrder();
    EXPECT_EQ(handler.Names(), Names{L"A"});
}

TEST_F(MaintainedOrder, LeavesTheDefaultsUnchanged)
{
    const SampleApplication first = RegisterSample(folder.Path(), L"A");
    const SampleApplication own = RegisterOwnSample(folder.Path(), L"B");
    PutDword(HKEY_CURRENT_USER, first.Preferences(), L"DefaultFlag", 1);
    PutDword(HKEY_LOCAL_MACHINE, own.Preferences(), L"DefaultFlag", 1);
    handler.MaintainOrder();
    EXPECT_EQ(StoredDword(HKEY_CURRENT_USER, first.Preferences(), L"DefaultFlag"), 1U);
    EXPECT_EQ(StoredDword(HKEY_LOCAL_MACHINE, own.Preferences(), L"DefaultFlag"), 1U);
}

TEST_F(MaintainedOrder, ThatCannotWriteTheEntryReportsNothing)
{
    RemoveKey(HKEY_LOCAL_MACHINE, kRunKey);
    RegisterSample(folder.Path(), L"A");
    handler.MaintainOrder();
    EXPECT_FALSE(KeyExists(HKEY_LOCAL_MACHINE, kRunKey));
    EXPECT_TRUE(trace.Lines().empty());
}

TEST_F(MaintainedOrder, WithoutAnApplicationHandsDevicesBackAndEndsTheProcess)
{
    const ProcessEndCatcher catcher;
    RegisterOrganiser(L"C:\\Legacy");
    PutText(HKEY_LOCAL_MACHINE, kRunKey, kRunValue, L"\"C:\\gone.exe\"");
    std::vector<std::wstring> tracedBeforeHandBack;
    spawns.OnSpawn([&](const SpawnCall&) {
        tracedBeforeHandBack = trace.Lines();
        EXPECT_TRUE(RunValue()); // the entry is removed afterwards
    });
    UINT exitCode = 99;
    try {
        handler.MaintainOrder();
    } catch (const ProcessEnded& ended) {
        exitCode = ended.exitCode;
    }
    EXPECT_EQ(exitCode, 0U);
    ASSERT_EQ(spawns.Calls().size(), 1U);
    EXPECT_EQ(spawns.Calls()[0].arguments.at(1), L"-i");
    EXPECT_EQ(tracedBeforeHandBack.size(), 1U);
    EXPECT_EQ(RunValue(), std::nullopt);
    EXPECT_EQ(
        trace.Lines(),
        (Names{L"<KestraBoot><!!! No Kestra Compatible application found. This situation should be "
               L"avoided.>",
               L"<KestraBoot><Deleting run key. Auto run is going to discontinue from now onwards.>"}));
}

TEST_F(MaintainedOrder, WithoutAnApplicationDeletesTheEntryBeforeItIsTraced)
{
    const ProcessEndCatcher catcher;
    const FAKE_IMPORT(RegDeleteValueW) remove([&](HKEY key, const wchar_t* name) -> LONG {
        EXPECT_EQ(trace.Lines().size(), 1U);
        return remove.CallOriginal(key, name);
    });
    EXPECT_THROW(handler.MaintainOrder(), ProcessEnded);
    EXPECT_EQ(remove.Calls(), 1);
}

} // namespace
} // namespace kestraboot
