// The findings of kestractl --check on real machines, healthy and not; it changes nothing on them.
#include "tests/support/compatible_application.h"
#include "tests/support/import_patch.h"
#include "tests/support/pe_builder.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/temp_folder.h"
#include "tests/system/checked_machine.h"
#include "tests/system/child_process.h"
#include "tests/system/debug_reader.h"
#include "tests/system/system_test.h"
#include "tools/ctl/look/look.h"

#include <gmock/gmock.h>
#include <wtsapi32.h>

#include <iostream>

namespace kestraboot::tests
{
namespace
{

using nlohmann::json;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

constexpr DWORD kFine = 0;
constexpr DWORD kBroken = 4;

/// One application with two plugins; its boot program is in control and starts at log-on.
class HealthyMachine : public CheckedMachine
{
protected:
    HealthyMachine()
    {
        folders = {viewer.folder.Path()};
        PutUserPreferences(viewer, 1);
        PutAutoRun(viewer.Proxy());
        plugins = viewer.folder.AddFolder(L"moxplugins");
        for (const wchar_t* const plugin : {L"nokiamanager.mox", L"sample_plugin.mox"}) {
            std::filesystem::copy_file(BuiltPrograms() / plugin, plugins / plugin);
        }
    }

    void AwaitControl(DWORD processId) { ASSERT_NE(AwaitWindow(processId, kBootTitle), nullptr); }

    Installation viewer{L"Viewer"};
    std::filesystem::path plugins;
};

TEST_F(HealthyMachine, IsAllFine)
{
    const StartedWith boot(TokenElevationTypeLimited, viewer.Proxy());
    AwaitControl(boot.Id());
    const std::string text = CheckWithoutChange(kFine);
    std::cout << text;
    EXPECT_THAT(text, EndsWith("\n0 broken, 0 suspicious, 18 fine\n"));
    EXPECT_THAT(text, AllOf(Not(HasSubstr("->")), StartsWith("fine        account      ")));
    const json told = CheckJson(kFine);
    std::cout << told << "\n";
    EXPECT_EQ(told["broken"], 0);
    EXPECT_EQ(told["suspicious"], 0);
    EXPECT_THAT(RowsOf(told, "control"),
                ElementsAre("fine " + viewer.Proxy().string() + ": has control (process " +
                            std::to_string(boot.Id()) + ")"));
    EXPECT_THAT(RowsOf(told, "plugin"),
                ElementsAre(StartsWith("fine nokiamanager.mox: is a 64-bit plugin"),
                            StartsWith("fine sample_plugin.mox: is a 64-bit plugin")));
    EXPECT_THAT(RowsOf(told, "windows"), ElementsAre(HasSubstr("is told Windows 6.0 (build ")));
    EXPECT_THAT(RowsOf(told, "version"),
                ElementsAre(HasSubstr("version 1.0.0.0"), HasSubstr("beside it, version 1.0.0.0")));
}

TEST_F(HealthyMachine, ReportsThatTheBootProgramWasStartedElevated)
{
    const StartedWith boot(TokenElevationTypeFull, viewer.Proxy());
    AwaitControl(boot.Id());
    EXPECT_THAT(RowsOf(CheckJson(kFine), "control"),
                ElementsAre(AllOf(StartsWith("suspicious " + viewer.Proxy().string() + ": has control"),
                                  HasSubstr("was started elevated"))));
}

TEST_F(HealthyMachine, NamesTheProcessInControlWithoutAWindow)
{
    const HANDLE claim = ::CreateMutexW(nullptr, FALSE, kBootTitle.c_str());
    ASSERT_NE(claim, nullptr);
    EXPECT_THAT(RowsOf(CheckJson(kFine), "control"),
                ElementsAre(HasSubstr("a program has control that has no window")));
    // It is identified by its path, if it is the boot program of an application.
    PutText(HKEY_LOCAL_MACHINE, viewer.KeyPath(), L"ProxyPath", RunningExecutable());
    EXPECT_THAT(
        RowsOf(CheckJson(kFine), "control"),
        ElementsAre(HasSubstr("has control (process " + std::to_string(::GetCurrentProcessId()))));
    ::CloseHandle(claim);
    EXPECT_THAT(RowsOf(CheckJson(kBroken), "control"),
                ElementsAre("broken : no boot program has control: nothing notices a device"));
}

TEST_F(HealthyMachine, ReportsThatTheDebugOutputIsRead)
{
    const auto rows = [&] {
        return RowsOf(CheckJson(kBroken), "debug-output"); // no instance is in control
    };
    EXPECT_THAT(rows(), ElementsAre(StartsWith("fine ")));
    const DebugReader reader;
    EXPECT_THAT(rows(), ElementsAre(StartsWith("suspicious : a program reads the debug output")));
}

TEST_F(HealthyMachine, ReportsThatAListedProgramIsDisabled)
{
    const wchar_t* const key =
        L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Explorer\\StartupApproved\\Run";
    const BYTE off[12] = {3};
    PutBytes(HKEY_LOCAL_MACHINE, key, L"Corvane Kestrafetch", REG_BINARY, off, sizeof off);
    EXPECT_THAT(RowsOf(CheckJson(kBroken), "auto-run"), ElementsAre(HasSubstr("is switched off")));
    RemoveKey(HKEY_LOCAL_MACHINE, key);
    EXPECT_THAT(RowsOf(CheckJson(kBroken), "auto-run"), ElementsAre(StartsWith("fine ")));
}

TEST_F(HealthyMachine, ShowsTheMissingImportsOfItsLibraries)
{
    // A library without a version resource, and one that Windows would load instead of its own.
    viewer.folder.AddFile(L"kestraboot.dll", PeFile().Bytes());
    viewer.folder.AddFile(L"sti.dll", "a text");
    const json told = CheckJson(kBroken);
    EXPECT_THAT(RowsOf(told, "version"),
                Contains(AllOf(StartsWith("suspicious " + viewer.Proxy().string()),
                               HasSubstr("beside it, no version resource"))));
    EXPECT_THAT(RowsOf(told, "still-image"), ElementsAre(HasSubstr("sti.dll is no program file")));
}

/// All possible faults at once.
class MachineWithFaults : public CheckedMachine
{
protected:
    MachineWithFaults()
    {
        folders = {bilder.folder.Path(), albums.folder.Path(), broken.folder.Path()};
        PutAutoRun(L"C:\\gone\\kestraboot.exe");       // 1, 2: none runs
        std::filesystem::remove(broken.Application()); // 3
        PutText(HKEY_LOCAL_MACHINE, kRoot + L"Case\\corvane kestrafetch", L"Name", L"Case"); // 4
        PutText(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Wow6432Node\\Corvane\\Narrow\\Corvane Kestrafetch",
                L"Name", L"Narrow"); // 5
        PutText(HKEY_LOCAL_MACHINE, kRoot + L"M" + std::wstring(127, L'm'), L"", L"");
        PutText(HKEY_LOCAL_MACHINE, kRoot + L"Z\\Corvane Kestrafetch", L"Name", L"Behind");   // 6
        PutDword(HKEY_LOCAL_MACHINE, bilder.KeyPath() + L"\\Preferences", L"DefaultFlag", 1); // 7
        PutDword(HKEY_CURRENT_USER, albums.KeyPath(), L"SniffDepth", 0);  // 8, and 9: its name
        albums.AddOemFile("[KestraProxyStopInstall]\r\n1\r\n");           // 10
        albums.folder.AddFile(L"moxplugins/text.mox", "This is a text."); // 11
        // The organiser has no VelProxy.exe                                              // 12
    }

    const std::wstring kRoot = L"SOFTWARE\\Corvane\\";
    Installation albums{L"Albums"}; // the first that the library finds
    Installation bilder{L"Bilder"};
    Installation broken{L"Photos"};
    LegacyOrganiser organiser;
};

TEST_F(MachineWithFaults, ShowsEachOfThem)
{
    const std::string text = CheckWithoutChange(kBroken);
    std::cout << text;
    const json told = CheckJson(kBroken);
    std::cout << told << "\n";
    EXPECT_THAT(RowsOf(told, "control"),
                ElementsAre(StartsWith("broken : no boot program has control")));
    EXPECT_THAT(RowsOf(told, "auto-run"),
                ElementsAre("broken C:\\gone\\kestraboot.exe: the auto-run entry names this file, which "
                            "does not exist"));
    EXPECT_THAT(RowsOf(told, "application"),
                ElementsAre(StartsWith("fine Albums: is listed"), StartsWith("fine Bilder: is listed"),
                            StartsWith("broken Case: "), HasSubstr("names a file that does not exist"),
                            AllOf(StartsWith("broken Behind: "), HasSubstr("a name of 128 or more")),
                            StartsWith("broken Narrow: is registered in the 32-bit view")));
    EXPECT_THAT(RowsOf(told, "default"),
                Contains(StartsWith("suspicious Bilder: is a default of the machine alone")));
    EXPECT_THAT(RowsOf(told, "preferences"), ElementsAre(StartsWith("suspicious Albums: its key")));
    EXPECT_THAT(RowsOf(told, "sniff-depth"), ElementsAre(StartsWith("suspicious Albums: ")));
    EXPECT_THAT(RowsOf(told, "organiser"),
                ElementsAre(AllOf(StartsWith("broken "), HasSubstr("VelProxy.exe"))));
    EXPECT_THAT(RowsOf(told, "oem-file"),
                ElementsAre(AllOf(StartsWith("broken " + albums.folder.Path().string()),
                                  HasSubstr("is \"1\", which counts as the number 1"))));
    EXPECT_THAT(RowsOf(told, "plugins"),
                ElementsAre(StartsWith("broken : there is no nokiamanager.mox")));
    EXPECT_THAT(RowsOf(told, "plugin"), ElementsAre("broken text.mox: is no program file"));
    EXPECT_EQ(told["broken"], 10);
    EXPECT_EQ(told["suspicious"], 3);
    EXPECT_THAT(text, EndsWith("\n10 broken, 3 suspicious, " + told["fine"].dump() + " fine\n"));
    for (const json& row : told["rows"]) { // the text output agrees
        EXPECT_THAT(text, HasSubstr(row["reason"].get<std::string>() + "\n"));
    }
    EXPECT_THAT(organiser.Orders(), testing::IsEmpty());
}

TEST_F(HealthyMachine, ShowsEveryKindOfBadPlugin)
{
    const auto put = [&](const char* name, const std::string& bytes) {
        viewer.folder.AddFile(std::filesystem::path("moxplugins") / name, bytes);
    };
    PeFile file;
    file.machine = 0x014C;
    put("a.mox", file.Bytes());
    file = {};
    put("b.mox", file.Bytes().substr(0, 300));
    file.exports = {"Other"};
    put("c.mox", file.Bytes());
    file = {};
    file.needs = {"KERNEL32.dll", "nowhere.dll", "beside.dll", "moxplugins_only.dll"};
    put("d.mox", file.Bytes());
    PeFile beside;
    beside.needs = {"far.dll"};
    viewer.folder.AddFile(L"beside.dll", beside.Bytes());
    put("moxplugins_only.dll", PeFile().Bytes()); // Windows does not search that folder
    put("e.mox", PeFile().Bytes());
    put("f.mox", PeFile().Bytes());
    put("g.mox", "");
    viewer.folder.AddFolder(L"moxplugins/h.mox"); // a folder, not a file
    std::filesystem::copy_file(BuiltPrograms() / L"sample_plugin.mox", plugins / L"z.mox");
    EXPECT_THAT(RowsOf(CheckJson(kBroken), "plugin"),
                testing::UnorderedElementsAre(
                    "broken a.mox: is 32-bit; the boot program is 64-bit",
                    "broken b.mox: is cut off in the middle, or damaged",
                    "broken c.mox: has no entry point FxPluginMain",
                    "broken d.mox: needs nowhere.dll, which cannot be found, moxplugins_only.dll, which "
                    "cannot be "
                    "found and far.dll (for beside.dll), which cannot be found",
                    StartsWith("fine e.mox: is a 64-bit plugin"),
                    StartsWith("suspicious f.mox: is byte for byte e.mox"),
                    "broken g.mox: is no program file", StartsWith("fine nokiamanager.mox"),
                    StartsWith("fine sample_plugin.mox"),
                    StartsWith("suspicious z.mox: is byte for byte sample_plugin.mox")));
}

TEST_F(HealthyMachine, FindsTheLibrariesOfAPluginInEveryFolderOfThePath)
{
    const TempFolder first;
    const TempFolder second;
    first.AddFile(L"of_first.dll", PeFile().Bytes());
    second.AddFile(L"of_second.dll", PeFile().Bytes());
    PeFile plugin;
    plugin.needs = {"of_first.dll", "of_second.dll"};
    viewer.folder.AddFile(L"moxplugins/needs.mox", plugin.Bytes());
    wchar_t usual[4096] = {};
    ::GetEnvironmentVariableW(L"PATH", usual, static_cast<DWORD>(std::size(usual)));
    ::SetEnvironmentVariableW(L"PATH",
                              (first.Path().wstring() + L";" + second.Path().wstring()).c_str());
    const json told = CheckJson(kBroken); // no instance is in control
    ::SetEnvironmentVariableW(L"PATH", usual);
    EXPECT_THAT(RowsOf(told, "plugin"), Contains(StartsWith("fine needs.mox: is a 64-bit plugin")));
}

TEST_F(HealthyMachine, ShowsTwoHundredPlugins)
{
    for (int i = 0; i < 200; ++i) {
        PeFile file;
        file.padding = std::to_string(i);
        const std::string bytes = file.Bytes();
        viewer.folder.AddFile("moxplugins/p" + std::to_string(i) + ".mox",
                              i % 4 == 0   ? "text " + std::to_string(i)
                              : i % 4 == 1 ? bytes.substr(0, 100 + static_cast<std::size_t>(i))
                                           : bytes);
    }
    const std::vector<std::string> rows = RowsOf(CheckJson(kBroken), "plugin");
    EXPECT_THAT(rows, SizeIs(202));
    EXPECT_EQ(std::ranges::count_if(rows,
                                    [](const std::string& row) {
                                        return row.starts_with("fine ");
                                    }),
              102);
}

TEST_F(CheckedMachine, HoldsTwoThousandApplications)
{
    const Installation viewer(L"Viewer");
    for (int i = 0; i < 2'000; ++i) {
        const std::wstring key =
            L"SOFTWARE\\Corvane\\Product" + std::to_wstring(i) + L"\\Corvane Kestrafetch";
        PutText(HKEY_LOCAL_MACHINE, key, L"Name", L"Product " + std::to_wstring(i));
        PutText(HKEY_LOCAL_MACHINE, key, L"CmdLine", viewer.Application().wstring());
        PutText(HKEY_LOCAL_MACHINE, key, L"ProxyPath", viewer.Proxy().wstring());
    }
    const ULONGLONG begin = ::GetTickCount64();
    ChildProcess check(BuiltPrograms() / "kestractl.exe", L"--check --json");
    EXPECT_EQ(check.ExitCode(240'000), kBroken);
    std::cout << "--check: " << ::GetTickCount64() - begin << " ms\n";
    EXPECT_THAT(RowsOf(json::parse(check.Output()), "application"), SizeIs(2'001));
}

TEST_F(CheckedMachine, SaysWhoseSettingsItShows)
{
    const json told = CheckJson(kBroken);
    EXPECT_THAT(RowsOf(told, "account"),
                ElementsAre(AllOf(StartsWith("fine "), EndsWith(", who is logged on"))));
}

/// What a process of this kind sees of another account, which this prefix does not have.
TEST(InspectedAccount, KnowsWhoIsLoggedOnFromTheSession)
{
    const FAKE_IMPORT(WTSQuerySessionInformationW)
        session([](HANDLE, DWORD, WTS_INFO_CLASS what, wchar_t** text, DWORD* size) {
            static wchar_t user[] = L"anna";
            static wchar_t domain[] = L"PC";
            *text = what == WTSUserName ? user : domain;
            *size = 0;
            return TRUE;
        });
    const FAKE_IMPORT(WTSFreeMemory) freeing([](void*) {});
    const FAKE_IMPORT(LookupAccountSidW)
        lookup([](const wchar_t*, PSID, wchar_t* name, DWORD*, wchar_t* domain, DWORD*, SID_NAME_USE*) {
            std::wcscpy(name, L"admin");
            std::wcscpy(domain, L"PC");
            return TRUE;
        });
    const tools::Account account = tools::LookAtAccount();
    EXPECT_EQ(account.user, L"PC\\admin");
    EXPECT_EQ(account.loggedOn, L"PC\\anna");
    EXPECT_NE(account.session, 0U);
}

TEST(InspectedAccount, OmitsDataThatWindowsDoesNotReturn)
{
    const FAKE_IMPORT(WTSQuerySessionInformationW)
        session([](HANDLE, DWORD, WTS_INFO_CLASS, wchar_t**, DWORD*) {
            return FALSE;
        });
    const FAKE_IMPORT(OpenProcessToken) token([](HANDLE, DWORD, HANDLE*) {
        return FALSE;
    });
    const tools::Account account = tools::LookAtAccount();
    EXPECT_EQ(account.user, L"(unknown)");
    EXPECT_FALSE(account.loggedOn);
    EXPECT_EQ(tools::IsElevated(::GetCurrentProcess()), std::nullopt);
}

TEST_F(HealthyMachine, IsInControlOfAProcessThatCannotBeInspected)
{
    const StartedWith boot(TokenElevationTypeLimited, viewer.Proxy());
    AwaitControl(boot.Id());
    const FAKE_IMPORT(OpenProcess) open([](DWORD, BOOL, DWORD) {
        ::SetLastError(ERROR_ACCESS_DENIED);
        return HANDLE{nullptr};
    });
    const FAKE_IMPORT(OpenMutexW) claim([](DWORD, BOOL, const wchar_t*) {
        ::SetLastError(ERROR_ACCESS_DENIED);
        return HANDLE{nullptr};
    });
    const tools::Control control = tools::LookAtControl({});
    EXPECT_TRUE(control.claimed);
    ASSERT_THAT(control.processes, SizeIs(1));
    EXPECT_EQ(control.processes[0].id, boot.Id());
    EXPECT_FALSE(control.processes[0].path);
}

} // namespace
} // namespace kestraboot::tests
