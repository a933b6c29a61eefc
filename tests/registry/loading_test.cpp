#include "tests/registry/handler.h"
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trace_recorder.h"

#include <gmock/gmock.h>

#include <shlwapi.h>

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct Loading : testing::Test {
    RegistrySandbox sandbox;
    TempFolder folder;
    OpenHandler handler;
};

constexpr const wchar_t* kAutoLaunch = L"AutoLaunchOnDeviceConnect";

TEST_F(Loading, DoesNotHappenByItself)
{
    RegisterSample(folder.Path(), L"Viewer");
    EXPECT_EQ(handler.Names(), Names{});
}

TEST_F(Loading, OpensEveryKeyWithReadAccessAlone)
{
    const SampleApplication sample = RegisterSample(folder.Path(), L"A");
    MakeKey(HKEY_LOCAL_MACHINE, sample.keyPath + L"\\File Formats");
    MakeKey(HKEY_LOCAL_MACHINE, sample.Preferences());
    MakeKey(HKEY_CURRENT_USER, sample.Preferences()); // else the load creates it
    std::vector<REGSAM> asked;
    int preferences = 0;
    const FAKE_IMPORT(RegOpenKeyExW)
        opens([&](HKEY root, const wchar_t* subkey, DWORD options, REGSAM access, HKEY* opened) {
            asked.push_back(access);
            preferences += sample.Preferences() == subkey ? 1 : 0;
            return opens.CallOriginal(root, subkey, options, access, opened);
        });
    handler.LoadInformation();
    EXPECT_EQ(handler.Names(), Names{L"A"});
    EXPECT_THAT(asked, testing::Each(REGSAM{KEY_READ}));
    EXPECT_EQ(preferences, 3) << "the default flag, and the exclusion by the user and by the machine";
}

TEST_F(Loading, KeepsTheOrderOfTheSearchAndEveryMember)
{
    const SampleApplication deep = RegisterSample(folder.Path(), L"A\\1.0");
    const SampleApplication flat = RegisterSample(folder.Path(), L"Z");
    PutText(HKEY_LOCAL_MACHINE, deep.keyPath + L"\\File Formats", L"Image", L"jpg");
    PutDword(HKEY_CURRENT_USER, deep.Preferences(), L"DefaultFlag", 3);
    const TraceRecorder trace;
    handler.LoadInformation();
    ASSERT_EQ(handler.Names(), (Names{L"Z", L"A\\1.0"}));
    const appInfo_tag& record = handler.applications[1];
    EXPECT_EQ(record.KeyPath, deep.keyPath);
    EXPECT_EQ(record.ProxyPath, deep.proxyPath);
    EXPECT_EQ(record.CmdLine, deep.commandPath);
    EXPECT_EQ(record.DefaultFlag, 3U);
    EXPECT_EQ(record.FileFormats.size(), 1U);
    EXPECT_TRUE(trace.Lines().empty());
}

TEST_F(Loading, ReplacesThePreviousList)
{
    RegisterSample(folder.Path(), L"A");
    handler.LoadInformation();
    RemoveKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\A");
    RegisterSample(folder.Path(), L"B");
    handler.LoadInformation();
    EXPECT_EQ(handler.Names(), Names{L"B"});
    RemoveKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane");
    handler.LoadInformation();
    EXPECT_EQ(handler.Names(), Names{});
}

TEST_F(Loading, KeepsTwoKeysThatDescribeTheSameFiles)
{
    const SampleApplication first = RegisterSample(folder.Path(), L"A");
    for (const wchar_t* const name : {L"Name", L"ProxyPath", L"CmdLine"}) {
        PutText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\B\\Corvane Kestrafetch", name,
                *StoredText(HKEY_LOCAL_MACHINE, first.keyPath, name));
    }
    handler.LoadInformation();
    EXPECT_EQ(handler.Names(), (Names{L"A", L"A"}));
}

TEST_F(Loading, LeavesOutAnApplicationWhoseCommandIsMissing)
{
    const SampleApplication sample = RegisterSample(folder.Path(), L"Viewer");
    PutDword(HKEY_CURRENT_USER, sample.Preferences(), L"DefaultFlag", 1);
    std::filesystem::remove(sample.commandPath);
    handler.LoadInformation();
    EXPECT_EQ(handler.Names(), Names{});
}

TEST_F(Loading, LeavesOutAnApplicationWhoseProxyIsMissing)
{
    std::filesystem::remove(RegisterSample(folder.Path(), L"Viewer").proxyPath);
    handler.LoadInformation();
    EXPECT_EQ(handler.Names(), Names{});
}

TEST_F(Loading, LeavesOutAnApplicationWhosePathsAreQuotedOrEmpty)
{
    const SampleApplication sample = RegisterSample(folder.Path(), L"Viewer");
    PutText(HKEY_LOCAL_MACHINE, sample.keyPath, L"CmdLine", L'"' + sample.commandPath + L'"');
    handler.LoadInformation();
    EXPECT_EQ(handler.Names(), Names{});
    PutText(HKEY_LOCAL_MACHINE, sample.keyPath, L"CmdLine", L"");
    handler.LoadInformation();
    EXPECT_EQ(handler.Names(), Names{});
}

TEST_F(Loading, TestsTheCommandThenTheProxyThenThePreference)
{
    const SampleApplication sample = RegisterSample(folder.Path(), L"Viewer");
    PutDword(HKEY_LOCAL_MACHINE, sample.Preferences(), kAutoLaunch, 0);
    std::vector<std::wstring> tested;
    bool commandExists = false;
    const FAKE_IMPORT(PathFileExistsW) exists([&](const wchar_t* path) -> BOOL {
        tested.push_back(std::filesystem::path(path).filename().wstring());
        return commandExists;
    });
    const FAKE_IMPORT(RegQueryValueExW) read([&](HKEY key, const wchar_t* value, DWORD* reserved,
                                                 DWORD* type, BYTE* data, DWORD* size) -> LSTATUS {
        if (value != nullptr && std::wcscmp(value, kAutoLaunch) == 0) {
            tested.push_back(value);
        }
        return read.CallOriginal(key, value, reserved, type, data, size);
    });
    handler.LoadInformation();
    EXPECT_EQ(tested, (Names{L"viewer.exe"}));
    tested.clear();
    commandExists = true;
    handler.LoadInformation();
    EXPECT_THAT(tested, testing::ElementsAre(L"viewer.exe", L"proxy.exe", kAutoLaunch));
    EXPECT_EQ(handler.Names(), Names{L"Viewer"});
}

TEST_F(Loading, LeavesOutAnApplicationThatTheMachineExcludes)
{
    const SampleApplication sample = RegisterSample(folder.Path(), L"Viewer");
    PutDword(HKEY_LOCAL_MACHINE, sample.Preferences(), kAutoLaunch, 1);
    handler.LoadInformation();
    EXPECT_EQ(handler.Names(), Names{});
}

TEST_F(Loading, LeavesOutAnApplicationThatTheUserExcludes)
{
    const SampleApplication sample = RegisterSample(folder.Path(), L"Viewer");
    PutDword(HKEY_LOCAL_MACHINE, sample.Preferences(), kAutoLaunch, 0);
    PutDword(HKEY_CURRENT_USER, sample.Preferences(), kAutoLaunch, 1);
    handler.LoadInformation();
    EXPECT_EQ(handler.Names(), Names{});
}

TEST_F(Loading, LetsTheUserIncludeAnApplicationAgain)
{
    const SampleApplication sample = RegisterSample(folder.Path(), L"Viewer");
    PutDword(HKEY_LOCAL_MACHINE, sample.Preferences(), kAutoLaunch, 1);
    for (const std::uint32_t other : {0U, 2U, 0x80000001U}) {
        PutDword(HKEY_CURRENT_USER, sample.Preferences(), kAutoLaunch, other);
        handler.LoadInformation();
        EXPECT_EQ(handler.Names(), Names{L"Viewer"}) << other;
    }
}

TEST_F(Loading, UsesTheMachinesValueIfTheUsersLooksMissing)
{
    const SampleApplication sample = RegisterSample(folder.Path(), L"Viewer");
    PutDword(HKEY_LOCAL_MACHINE, sample.Preferences(), kAutoLaunch, 1);
    MakeKey(HKEY_CURRENT_USER, sample.Preferences());
    handler.LoadInformation();
    EXPECT_EQ(handler.Names(), Names{});
    PutDword(HKEY_CURRENT_USER, sample.Preferences(), kAutoLaunch, 0xFFFFFFFF);
    handler.LoadInformation();
    EXPECT_EQ(handler.Names(), Names{});
}

TEST_F(Loading, ExcludesForTheValueOneAlone)
{
    const SampleApplication sample = RegisterSample(folder.Path(), L"Viewer");
    for (const std::uint32_t other : {0U, 2U, 0xFFFFFFFFU}) {
        PutDword(HKEY_LOCAL_MACHINE, sample.Preferences(), kAutoLaunch, other);
        handler.LoadInformation();
        EXPECT_EQ(handler.Names(), Names{L"Viewer"}) << other;
    }
}

} // namespace
} // namespace kestraboot
