#include "tests/registry/handler.h"
#include "tests/support/handle_count.h"
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trace_recorder.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

constexpr const wchar_t* kStatus = L"kestralaunchstatus";

struct LaunchStatus : testing::Test {
    LaunchStatus()
    {
        MakeKey(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane");
        RegisterSample(folder.Path(), L"A");
        own = RegisterOwnSample(folder.Path(), L"Vellumry\\7.0");
    }
    [[nodiscard]] auto Stored() const { return StoredDword(HKEY_CURRENT_USER, own.OwnKey(), kStatus); }
    RegistrySandbox sandbox;
    TempFolder folder;
    SampleApplication own;
    TraceRecorder trace;
    OpenHandler handler;
};

TEST_F(LaunchStatus, IsFalseForZeroAloneAndReadForTheUser)
{
    EXPECT_EQ(own.OwnKey(), L"SOFTWARE\\Corvane\\Vellumry\\7.0");
    PutDword(HKEY_CURRENT_USER, own.OwnKey(), kStatus, 0);
    EXPECT_FALSE(handler.GetKestraLaunchStatus());
    for (const std::uint32_t other : {1U, 2U, 0x80000000U, 0xFFFFFFFFU}) {
        PutDword(HKEY_CURRENT_USER, own.OwnKey(), kStatus, other);
        EXPECT_TRUE(handler.GetKestraLaunchStatus()) << other;
        EXPECT_EQ(Stored(), other);
    }
    EXPECT_TRUE(trace.Lines().empty());
}

TEST_F(LaunchStatus, IsNotTheMachines)
{
    PutDword(HKEY_LOCAL_MACHINE, own.OwnKey(), kStatus, 0);
    EXPECT_TRUE(handler.GetKestraLaunchStatus());
}

TEST_F(LaunchStatus, ThatIsMissingIsTrueAndAQueryNeverCreatesIt)
{
    MakeKey(HKEY_CURRENT_USER, own.OwnKey());
    EXPECT_TRUE(handler.GetKestraLaunchStatus());
    EXPECT_EQ(Stored(), std::nullopt);
}

TEST_F(LaunchStatus, ThatIsMissingIsWrittenThroughTheHandleOpenForReading)
{
    // The key is already open for reading, so Windows refuses the write that is tried.
    MakeKey(HKEY_CURRENT_USER, own.OwnKey());
    PutDword(HKEY_CURRENT_USER, own.Preferences(), L"DefaultFlag", 0);
    int tried = 0;
    const FAKE_IMPORT(RegSetValueExW) set([&](HKEY key, const wchar_t* name, DWORD reserved, DWORD type,
                                              const BYTE* data, DWORD size) -> LONG {
        const LONG status = set.CallOriginal(key, name, reserved, type, data, size);
        if (std::wstring(name) == kStatus) {
            ++tried;
            EXPECT_EQ(*data, 1);
            EXPECT_EQ(status, ERROR_ACCESS_DENIED);
        }
        return status;
    });
    EXPECT_TRUE(handler.GetKestraLaunchStatus());
    EXPECT_EQ(tried, 1);
}

TEST_F(LaunchStatus, IsStoredAsANumberForTheUser)
{
    MakeKey(HKEY_CURRENT_USER, own.OwnKey());
    EXPECT_TRUE(handler.SetKestraLaunchStatus(0));
    EXPECT_EQ(Stored(), 0U);
    EXPECT_FALSE(handler.GetKestraLaunchStatus());
    EXPECT_TRUE(handler.SetKestraLaunchStatus(1));
    EXPECT_TRUE(handler.GetKestraLaunchStatus());
    EXPECT_TRUE(handler.SetKestraLaunchStatus(-2));
    EXPECT_EQ(Stored(), 0xFFFFFFFEU);
    EXPECT_EQ(StoredDword(HKEY_LOCAL_MACHINE, own.OwnKey(), kStatus), std::nullopt);
    EXPECT_TRUE(trace.Lines().empty());
}

TEST_F(LaunchStatus, CannotBeStoredInAKeyThatDoesNotExistAndNothingIsCreated)
{
    RemoveKey(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane"); // so that no preferences key creates it
    EXPECT_FALSE(handler.SetKestraLaunchStatus(0));
    EXPECT_TRUE(handler.GetKestraLaunchStatus());
    EXPECT_FALSE(KeyExists(HKEY_CURRENT_USER, own.OwnKey()));
}

TEST_F(LaunchStatus, IsReportedAsNotStoredWhenTheWriteFails)
{
    MakeKey(HKEY_CURRENT_USER, own.OwnKey());
    const FAKE_IMPORT(RegSetValueExW) set([](auto...) -> LONG {
        return ERROR_DISK_FULL;
    });
    EXPECT_FALSE(handler.SetKestraLaunchStatus(0));
}

TEST_F(LaunchStatus, IsQueriedWithReadAccessAndSetWithWriteAccess)
{
    MakeKey(HKEY_CURRENT_USER, own.OwnKey());
    std::vector<REGSAM> rights;
    const FAKE_IMPORT(RegOpenKeyExW)
        open([&](HKEY root, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) -> LONG {
            if (root == HKEY_CURRENT_USER && path == own.OwnKey()) {
                rights.push_back(access);
            }
            return open.CallOriginal(root, path, options, access, key);
        });
    static_cast<void>(handler.GetKestraLaunchStatus());
    static_cast<void>(handler.SetKestraLaunchStatus(1));
    EXPECT_EQ(rights, (std::vector<REGSAM>{0x20019, 0x20006}));
}

TEST_F(LaunchStatus, OfAProgramThatIsNoApplicationsProxyIsTrueAndCannotBeStored)
{
    RemoveKey(HKEY_LOCAL_MACHINE, own.OwnKey());
    PutDword(HKEY_CURRENT_USER, own.OwnKey(), kStatus, 0);
    EXPECT_TRUE(handler.GetKestraLaunchStatus());
    EXPECT_FALSE(handler.SetKestraLaunchStatus(5));
    EXPECT_EQ(Stored(), 0U);
}

TEST_F(LaunchStatus, IsStoredAboveTheFirstKeyWhoseNameBeginsLikeTheApplicationKeys)
{
    RemoveKey(HKEY_LOCAL_MACHINE, own.OwnKey());
    RegisterOwnSample(folder.Path(), L"B\\Corvane Kestrafetch 2");
    MakeKey(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane\\B");
    EXPECT_TRUE(handler.SetKestraLaunchStatus(0));
    EXPECT_EQ(StoredDword(HKEY_CURRENT_USER, L"SOFTWARE\\Corvane\\B", kStatus), 0U);
}

TEST_F(LaunchStatus, MaintainsTheOrderFirst)
{
    MakeKey(HKEY_LOCAL_MACHINE, kRunKey);
    static_cast<void>(handler.GetKestraLaunchStatus());
    EXPECT_EQ(StoredText(HKEY_LOCAL_MACHINE, kRunKey, kRunValue), L'"' + own.proxyPath + L'"');
}

TEST_F(LaunchStatus, LeavesNoHandleOpen)
{
    MakeKey(HKEY_CURRENT_USER, own.OwnKey());
    EXPECT_EQ(HandlesLeftBy([&] {
                  static_cast<void>(handler.GetKestraLaunchStatus());
                  static_cast<void>(handler.SetKestraLaunchStatus(1));
              }),
              0);
}

} // namespace
} // namespace kestraboot
