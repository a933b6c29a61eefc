// The rows of --check for Windows, for accounts, and for boot programs.
#include "tests/tools/rows.h"

namespace kestraboot::tools
{
namespace
{

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string WindowsLine(std::uint32_t major, std::uint32_t minor, bool workstation = true)
{
    return Line(WindowsRow({true, major, minor, 1, workstation}));
}

TEST(CheckedWindows, IsShownWithItsTrackers)
{
    EXPECT_EQ(WindowsLine(6, 0),
              "fine windows : this program is told Windows 6.0 (build 1, workstation): "
              "the trackers of drives and cards, WIA, still images with TWAIN and "
              "device plugins run");
    EXPECT_THAT(WindowsLine(5, 1), HasSubstr("drives and cards, WIA, still images"));
    EXPECT_THAT(WindowsLine(5, 0),
                AllOf(StartsWith("fine "), HasSubstr("drives and cards, still images with TWAIN and")));
    for (const std::string& line : {WindowsLine(6, 0, false), WindowsLine(5, 2), WindowsLine(6, 1),
                                    WindowsLine(10, 0), Line(WindowsRow({}))}) {
        EXPECT_THAT(line, StartsWith("suspicious windows "));
    }
}

TEST(CheckedAccount, IsDistinguishedFromTheUserWhoIsLoggedOn)
{
    EXPECT_THAT(Line(AccountRow({L"PC\\anna", L"pc\\ANNA", 1})), StartsWith("fine "));
    EXPECT_EQ(Line(AccountRow({L"PC\\admin", L"PC\\anna", 1})),
              "suspicious account PC\\admin: the settings shown are those of PC\\admin, not those of "
              "PC\\anna, who is logged on -> run this program as PC\\anna, not as administrator");
    EXPECT_THAT(Line(AccountRow({L"PC\\anna", std::nullopt, 1})), StartsWith("fine "));
    EXPECT_THAT(Line(AccountRow({L"SYSTEM", std::nullopt, 0})),
                AllOf(StartsWith("suspicious "), HasSubstr("session 0")));
}

/// One application, whose boot program the auto-run entry names.
class CheckedBoot : public testing::Test
{
protected:
    CheckedBoot()
    {
        facts.account = {L"PC\\anna", L"PC\\anna", 1};
        facts.report.applications.emplace_back().info.Name = L"Viewer";
        facts.report.applications[0].info.ProxyPath = kProxy;
        facts.report.autoRun = L"\"" + kProxy + L"\"";
        facts.report.autoRunExists = true;
        facts.report.autoRunApplication = L"Viewer";
        facts.control = {true, {{7, kProxy, L"PC\\anna", false}}};
    }

    std::string OnlyRow()
    {
        const std::vector<std::string> lines = Lines(ControlRows(facts));
        EXPECT_EQ(lines.size(), 1U);
        return lines.at(0);
    }

    const std::wstring kProxy = L"C:\\Viewer\\kestraboot.exe";
    Facts facts;
};

TEST_F(CheckedBoot, IsFineInControl)
{
    EXPECT_EQ(OnlyRow(), "fine control C:\\Viewer\\kestraboot.exe: has control (process 7)");
}

TEST_F(CheckedBoot, IsMissingIfNoneHasControl)
{
    facts.control = {};
    EXPECT_THAT(OnlyRow(), StartsWith("broken control : no boot program has control"));
    facts.account.session = 0;
    EXPECT_THAT(OnlyRow(), StartsWith("suspicious control "));
}

TEST_F(CheckedBoot, IsMarkedIfItRunsElevated)
{
    facts.control.processes[0].elevated = true;
    EXPECT_THAT(OnlyRow(), AllOf(StartsWith("suspicious control C:\\Viewer"), HasSubstr("elevated")));
}

TEST_F(CheckedBoot, IsMarkedIfItRunsAsAnotherAccount)
{
    facts.control.processes[0].account = L"PC\\bert";
    EXPECT_THAT(OnlyRow(), AllOf(StartsWith("suspicious "), HasSubstr("but runs as PC\\bert"),
                                 HasSubstr("not those of PC\\anna"), Not(HasSubstr("elevated"))));
    facts.control.processes[0].account = L"pc\\Anna";
    EXPECT_THAT(OnlyRow(), StartsWith("fine "));
}

TEST_F(CheckedBoot, IsMarkedIfItCannotBeInspected)
{
    facts.control.processes[0].path.reset();
    EXPECT_THAT(OnlyRow(), AllOf(StartsWith("suspicious control process 7: "),
                                 HasSubstr("run kestractl as administrator")));
    facts.control.processes[0] = {7, kProxy, std::nullopt, false};
    EXPECT_THAT(OnlyRow(), StartsWith("suspicious control process 7: "));
}

TEST_F(CheckedBoot, IsMarkedIfItIsOfNoListedApplication)
{
    facts.control.processes[0].path = L"D:\\Viewer\\kestraboot.exe";
    EXPECT_THAT(OnlyRow(), AllOf(StartsWith("suspicious "), HasSubstr("of no listed application")));
    facts.control.processes[0].path = L"c:\\VIEWER\\kestraboot.exe";
    EXPECT_THAT(OnlyRow(), StartsWith("fine "));
}

TEST_F(CheckedBoot, IsNotGuessed)
{
    facts.control.claimed = false;
    EXPECT_THAT(OnlyRow(), AllOf(StartsWith("suspicious "), HasSubstr("nobody holds control")));
    facts.control = {true, {}};
    EXPECT_THAT(OnlyRow(), AllOf(StartsWith("suspicious "), HasSubstr("it is not known which")));
    EXPECT_FALSE(IsInControl(facts.control));
}

TEST_F(CheckedBoot, StartsAtLogOnByItsEntry)
{
    EXPECT_EQ(Line(AutoRunRow(facts)),
              "fine auto-run C:\\Viewer\\kestraboot.exe: starts at log-on, the boot program of Viewer");
    facts.autoRunSwitchedOff = true;
    EXPECT_THAT(Line(AutoRunRow(facts)), AllOf(StartsWith("broken "), HasSubstr("switched off")));
    facts.autoRunSwitchedOff = false;
    facts.report.autoRunApplication.reset();
    EXPECT_THAT(Line(AutoRunRow(facts)), StartsWith("suspicious auto-run C:\\Viewer"));
    facts.report.autoRunExists = false;
    EXPECT_THAT(Line(AutoRunRow(facts)), AllOf(StartsWith("broken "), HasSubstr("does not exist")));
    facts.report.autoRun.reset();
    EXPECT_THAT(Line(AutoRunRow(facts)), StartsWith("broken auto-run : there is no auto-run entry"));
}

TEST_F(CheckedBoot, IsTheOneInControlBeforeThatOfTheEntry)
{
    facts.control.processes[0].path = L"D:\\a\\boot.exe";
    EXPECT_EQ(BootProgramToLookBeside(facts.control, facts.report), L"D:\\a\\boot.exe");
    facts.report.autoRun = L"\"E:\\b\\boot.exe\"";
    facts.control.processes[0].path.reset();
    EXPECT_EQ(BootProgramToLookBeside(facts.control, facts.report), L"E:\\b\\boot.exe");
    facts.report.autoRunExists = false;
    EXPECT_EQ(BootProgramToLookBeside(facts.control, facts.report), kProxy);
    EXPECT_EQ(BootProgramToLookBeside({}, {}), L"");
}

TEST_F(CheckedBoot, IsStoppedByAnOemFileThatBeginsWithOne)
{
    BootFolder boot;
    boot.program = kProxy;
    EXPECT_EQ(Line(OemRow(boot, false)),
              "fine oem-file C:\\Viewer\\OEM\\album.ini: is not there: the usual case");
    boot.oem.exists = true;
    EXPECT_THAT(Line(OemRow(boot, false)), StartsWith("fine "));
    boot.oem.firstLine = L"01x";
    boot.oem.number = 1;
    EXPECT_THAT(Line(OemRow(boot, false)),
                AllOf(StartsWith("broken oem-file C:\\Viewer\\OEM\\album.ini: the first line"),
                      HasSubstr("is \"01x\", which counts as the number 1: the boot program gives up")));
    EXPECT_THAT(Line(OemRow(boot, true)),
                AllOf(StartsWith("suspicious "), HasSubstr("at its next start")));
    boot.oem.number = 2;
    EXPECT_THAT(Line(OemRow(boot, false)), StartsWith("fine "));
}

TEST_F(CheckedBoot, HasTheVersionOfTheLibraryThatIsAsked)
{
    facts.toolVersion = facts.libraryVersion = L"1.0.0.0";
    BootFolder boot = {kProxy, L"1.0.0.0", true, L"1.0.0.0", {}, {}};
    facts.boot = boot;
    EXPECT_THAT(
        Lines(VersionRows(facts)),
        ElementsAre("fine version : kestractl.exe, version 1.0.0.0; the kestraboot.dll that it asks, "
                    "version 1.0.0.0",
                    "fine version C:\\Viewer\\kestraboot.exe: the boot program, version 1.0.0.0; the "
                    "kestraboot.dll beside it, version 1.0.0.0"));
    const auto second = [&] {
        return Lines(VersionRows(facts)).at(1);
    };
    facts.boot->libraryVersion = L"1.1.0.0";
    EXPECT_THAT(second(), StartsWith("suspicious "));
    facts.boot->libraryVersion.reset();
    EXPECT_THAT(second(), AllOf(StartsWith("suspicious "), HasSubstr("beside it, no version resource")));
    facts.boot->libraryExists = false;
    EXPECT_THAT(second(), AllOf(StartsWith("suspicious "), HasSubstr("no kestraboot.dll beside it")));
    facts.boot = boot;
    facts.boot->programVersion.reset(); // another maker's host
    EXPECT_THAT(second(), StartsWith("fine "));
    facts.toolVersion = L"1.0.1.0";
    EXPECT_THAT(Lines(VersionRows(facts)).at(0), StartsWith("suspicious "));
}

TEST(CheckedOrganiser, NeedsItsPrograms)
{
    Facts facts;
    EXPECT_THAT(Line(OrganiserRow(facts)), StartsWith("fine organiser "));
    facts.report.organiser.emplace().ProxyPath = L"C:\\V\\VellumryDeviceConnect.exe";
    facts.report.organiser->CmdLine = L"C:\\V\\VelProxy.exe";
    EXPECT_THAT(Line(OrganiserRow(facts)),
                AllOf(StartsWith("broken "),
                      HasSubstr("not C:\\V\\VellumryDeviceConnect.exe and C:\\V\\VelProxy.exe")));
    facts.organiserPrograms = {true, false};
    EXPECT_THAT(Line(OrganiserRow(facts)), HasSubstr("but not C:\\V\\VelProxy.exe"));
    facts.organiserPrograms = {true, true};
    EXPECT_THAT(Line(OrganiserRow(facts)), StartsWith("fine "));
}

TEST(CheckedDebugOutput, IsReadByOneAtMost)
{
    EXPECT_THAT(Line(DebugOutputRow(false)), StartsWith("fine debug-output "));
    EXPECT_THAT(Line(DebugOutputRow(true)), StartsWith("suspicious debug-output "));
}

/// A Windows on which everything is watched, with all that it needs.
class CheckedImaging : public testing::Test
{
protected:
    CheckedImaging()
    {
        imaging = {true, true, false, false, Library(L"sti.dll"), Library(L"twain_32.dll"), 2};
        imaging.stillImage.file.image->exports = {"StiCreateInstance"};
        imaging.sourceManager.file.image->ordinals = {1};
    }

    static SystemPart Library(const std::wstring& name)
    {
        PeImage image;
        image.machine = kMachine64Bit;
        image.isLibrary = true;
        return {L"C:\\W\\" + name, {image, L""}, L"1.0.0.0"};
    }

    std::string LineOf(std::size_t row) { return Lines(ImagingRows(imaging, watched)).at(row); }

    static constexpr std::size_t kWia = 0;
    static constexpr std::size_t kStillImage = 1;
    static constexpr std::size_t kTwain = 2;
    ImagingParts imaging;
    WatchedDevices watched = {true, true, true};
};

TEST_F(CheckedImaging, IsFineWithServiceAndLibraries)
{
    EXPECT_THAT(LineOf(kWia), AllOf(StartsWith("fine wia "), HasSubstr("starts when it is asked")));
    EXPECT_EQ(LineOf(kStillImage), "fine still-image C:\\W\\sti.dll: can be loaded; version 1.0.0.0");
    EXPECT_EQ(LineOf(kTwain),
              "fine twain C:\\W\\twain_32.dll: is a 64-bit source manager, with 2 64-bit TWAIN sources");
    imaging.serviceRuns = true;
    EXPECT_THAT(LineOf(kWia), HasSubstr("(stisvc) runs"));
}

TEST_F(CheckedImaging, NeedsTheService)
{
    imaging.serviceDisabled = true;
    EXPECT_THAT(LineOf(kWia), AllOf(StartsWith("broken wia "), HasSubstr("is disabled")));
    imaging.serviceExists = false;
    EXPECT_THAT(LineOf(kWia), AllOf(StartsWith("broken wia "), HasSubstr("is not installed")));
    imaging.serviceKnown = false;
    EXPECT_THAT(LineOf(kWia), StartsWith("suspicious wia "));
}

TEST_F(CheckedImaging, NeedsStillImage)
{
    imaging.stillImage.file.image->exports.clear();
    EXPECT_THAT(LineOf(kStillImage), AllOf(StartsWith("broken "), HasSubstr("no entry point")));
    imaging.stillImage.file.image->machine = kMachine32Bit;
    EXPECT_THAT(LineOf(kStillImage),
                AllOf(StartsWith("broken "), HasSubstr("C:\\W\\sti.dll is 32-bit")));
    imaging.stillImage.file = {std::nullopt, L"is no program file"};
    EXPECT_THAT(LineOf(kStillImage), HasSubstr("C:\\W\\sti.dll is no program file"));
    imaging.stillImage = {};
    EXPECT_THAT(LineOf(kStillImage), HasSubstr("sti.dll cannot be found"));
}

TEST_F(CheckedImaging, NeedsA64BitSourceManagerAndSources)
{
    imaging.sources = 0;
    EXPECT_THAT(LineOf(kTwain), AllOf(StartsWith("suspicious "), HasSubstr("no 64-bit source:")));
    imaging.sourceManager.file.image->ordinals = {2};
    EXPECT_THAT(LineOf(kTwain), AllOf(StartsWith("suspicious "), HasSubstr("no entry point 1")));
    imaging.sourceManager.file.image->machine = kMachine32Bit;
    EXPECT_THAT(LineOf(kTwain), AllOf(StartsWith("suspicious "), HasSubstr("is 32-bit")));
}

TEST_F(CheckedImaging, IsFineIfItIsNotUsed)
{
    imaging = {};
    watched = {};
    for (const std::string& line : Lines(ImagingRows(imaging, watched))) {
        EXPECT_THAT(line, AllOf(StartsWith("fine "), HasSubstr("is not asked on this Windows")));
    }
}

} // namespace
} // namespace kestraboot::tools
