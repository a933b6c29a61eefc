// The steps of a start of the boot program, their order, and the state after a start that fails.
#include "tests/support/registry_sandbox.h"
#include "tests/system/faults.h"
#include "tests/system/registry_dump.h"
#include "tests/system/system_test.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

const std::wstring kRunKey = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
const std::string kNoPhones = "<***DeviceConnect***><NOKIA Devices will not be detected.>";

const std::string kLoad = "_ZN29CKestraBootInformationHandler15LoadInformationEv";
const std::string kTake = "_ZN25CKestraBootCommandHandler11TakeControlEv";
const std::string kMaintain = "_ZN29CKestraBootInformationHandler13MaintainOrderEv";
const std::string kGetAll =
    "_ZN29CKestraBootInformationHandler21GetAllApplicationInfoERSt6vectorI11appInfo_tagSaIS1_EE";

class Start : public SystemTest
{
protected:
    static std::wstring Quoted(const std::filesystem::path& path)
    {
        return L"\"" + path.wstring() + L"\"";
    }

    void WantNone() const
    {
        PutDword(HKEY_CURRENT_USER, app.KeyPath() + L"\\Preferences", L"AutoLaunchOnDeviceConnect", 1);
    }

    /// The watched calls of one process, in order.
    std::vector<std::string> Calls(DWORD processId) const
    {
        std::vector<std::string> lines = trace.LinesOf(processId);
        std::erase_if(lines, [](const std::string& line) {
            return !line.starts_with("<calls ");
        });
        return lines;
    }

    /// KESTRABOOT_FAULTS for calls of the boot program.
    static std::wstring InTheProgram(const std::vector<std::string>& imports, const std::string& what)
    {
        std::string all;
        for (const std::string& import : imports) {
            all += "kestraboot.exe!" + import + "=" + what + " ";
        }
        return {all.begin(), all.end()};
    }

    static std::string Called(const std::string& import) { return "<calls " + import + ">"; }

    // A product for which the library creates a user's key, as for most names.
    Installation app{L"Maker"};
};

TEST_F(Start, TakesControlThenCorrectsTheEntryThenCreatesItsWindowThenStartsTheTrackers)
{
    const std::vector<std::string> watched = {kLoad,
                                              kTake,
                                              kMaintain,
                                              "CreateWindowExW",
                                              "SetProcessShutdownParameters",
                                              "RegisterDeviceConnectCallback",
                                              "StartDeviceConnectService"};
    const Faults faults(app, InTheProgram(watched, "tell").c_str());
    ChildProcess boot(app.Proxy());
    Quit(boot);
    std::vector<std::string> expected;
    std::ranges::transform(watched, std::back_inserter(expected), Called);
    EXPECT_EQ(Calls(boot.Id()), expected);
}

TEST_F(Start, TheFirstOneWritesTheAutoRunEntry)
{
    Installation first(L"A product that is found before"); // the entry must not name its proxy
    ChildProcess boot(app.Proxy(), L"-install");
    ASSERT_NE(AwaitWindow(boot.Id(), kBootTitle), nullptr);
    EXPECT_EQ(AutoRunEntry(), Quoted(app.Proxy()));
    Quit(boot);
}

TEST_F(Start, ForAUserWhoWantsNoneOfTheApplicationsLeavesDevicesToTheOrganiser)
{
    LegacyOrganiser organiser;
    PutText(HKEY_LOCAL_MACHINE, kRunKey, L"Corvane Kestrafetch", Quoted(app.Proxy()));
    WantNone();
    const Faults faults(app, InTheProgram({kLoad, kTake, kMaintain}, "tell").c_str());
    ChildProcess boot(app.Proxy());
    EXPECT_EQ(boot.ExitCode(), kDone);
    EXPECT_THAT(trace.LinesOf(boot.Id()),
                ElementsAre(Called(kLoad), Called(kMaintain), kNoneFound, kDeletingRunKey));
    EXPECT_EQ(AutoRunEntry(), L"(none)");
    EXPECT_TRUE(AwaitOrders(organiser, {"-i"}));
}

TEST_F(Start, ThatIsRefusedWritesNothing)
{
    Installation other(L"Other");
    ChildProcess boot(app.Proxy());
    ASSERT_NE(AwaitWindow(boot.Id(), kBootTitle), nullptr);
    const std::vector<std::string> before = RegistryDump();
    ChildProcess second(other.Proxy());
    EXPECT_EQ(second.ExitCode(), kNotInControl);
    EXPECT_EQ(RegistryDump(), before);
    EXPECT_EQ(AutoRunEntry(), Quoted(app.Proxy()));
    Quit(boot);
}

TEST_F(Start, ThatTheOemFileStopsWritesNothingExceptForTheKeysOfLoading)
{
    app.AddOemFile("[KestraProxyStopInstall]\r\n1\r\n");
    const std::wstring preferences = app.KeyPath() + L"\\Preferences";
    ChildProcess first(app.Proxy());
    EXPECT_EQ(first.ExitCode(), kNotInControl);
    EXPECT_EQ(AutoRunEntry(), L"(none)");
    EXPECT_EQ(StoredDword(HKEY_CURRENT_USER, preferences, L"DefaultFlag"), 0U);

    const std::vector<std::string> before = RegistryDump();
    ChildProcess second(app.Proxy());
    EXPECT_EQ(second.ExitCode(), kNotInControl);
    EXPECT_EQ(RegistryDump(), before);
}

TEST_F(Start, TheMachinesDefaultIsOverBeforeTheFirstDevice)
{
    PutDword(HKEY_LOCAL_MACHINE, app.KeyPath() + L"\\Preferences", L"DefaultFlag", 1);
    ChildProcess boot(app.Proxy());
    Quit(boot);
    EXPECT_EQ(StoredDword(HKEY_CURRENT_USER, app.KeyPath() + L"\\Preferences", L"DefaultFlag"), 0U);
}

struct Failure {
    const char* name;
    std::vector<std::string> imports; ///< imports of the boot program; the fault applies to all of them
    const char* what;
    std::string line;                ///< the trace line about it
    std::vector<std::string> orders; ///< the orders to the organiser
    bool writesTheEntry;
};

class StartThatFails : public Start, public testing::WithParamInterface<Failure>
{
};

TEST_P(StartThatFails, IsTracedAndLeavesDevicesToTheOrganiser)
{
    LegacyOrganiser organiser;
    {
        const Faults faults(app, InTheProgram(GetParam().imports, GetParam().what).c_str());
        ChildProcess boot(app.Proxy(), L"", WritesOn::Nothing);
        EXPECT_EQ(boot.ExitCode(), kCannotServe);
        const std::vector<std::string> lines = trace.LinesOf(boot.Id());
        EXPECT_EQ(lines.back(), GetParam().line);
        EXPECT_EQ(std::ranges::count(lines, kTookControl), GetParam().orders.empty() ? 0 : 1);
        EXPECT_EQ(trace.Count(GetParam().line), 1);
        EXPECT_EQ(trace.Count(kNoPhones), 0) << "trackers were started";
        EXPECT_EQ(AutoRunEntry(), GetParam().writesTheEntry ? Quoted(app.Proxy()) : L"(none)");
        EXPECT_TRUE(AwaitOrders(organiser, GetParam().orders));
    }
    ChildProcess next(app.Proxy());
    Quit(next);
}

INSTANTIATE_TEST_SUITE_P(
    For, StartThatFails,
    testing::Values(
        Failure{"NoWindow", {"CreateWindowExW"}, "fail", kNoWindow, {"-d", "-i"}, true},
        Failure{"NoWindowClass", {"RegisterClassExW"}, "fail", kNoWindow, {"-d", "-i"}, true},
        Failure{"NoMemoryToLoad", {kLoad}, "no-memory", kNoMemory, {}, false},
        Failure{"NoMemoryForTheList", {kGetAll}, "fail", kNoMemory, {}, false},
        Failure{"NoMemoryInControl", {kMaintain}, "no-memory", kNoMemory, {"-d", "-i"}, false},
        Failure{"NoFolder", {"SetCurrentDirectoryW"}, "fail", kNoFolder, {}, false}),
    [](const testing::TestParamInfo<Failure>& failure) {
        return failure.param.name;
    });

} // namespace
} // namespace kestraboot::tests
