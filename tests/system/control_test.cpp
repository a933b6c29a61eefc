// Which instance of the boot program is in control.
#include "tests/system/quiet_exit.h"
#include "tests/system/system_test.h"

#include <gmock/gmock.h>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;

class Control : public SystemTest
{
protected:
    Installation app{L"App"};
};

TEST_F(Control, IsTakenServedAndReleasedWhenASentMessageAsks)
{
    ChildProcess boot(app.Proxy());
    Quit(boot);
    const std::vector<std::string> lines = trace.LinesOf(boot.Id());
    ASSERT_GE(lines.size(), 3U);
    EXPECT_THAT(std::vector(lines.begin(), lines.begin() + 3),
                ElementsAre(kTookControl, kFolderSet, kOemNotFound));
}

TEST_F(Control, IsReleasedWhenAPostedMessageAsks)
{
    ChildProcess boot(app.Proxy(), L"-install");
    const HWND window = AwaitWindow(boot.Id(), kBootTitle);
    ASSERT_NE(window, nullptr);
    EXPECT_FALSE(::IsWindowVisible(window));
    SuspendThreadsBeside(window);
    ::PostMessageW(window, WM_QUIT, 0, 0);
    EXPECT_EQ(boot.ExitCode(), kDone);
}

TEST_F(Control, IsTakenWithoutAConsole)
{
    ChildProcess boot(app.Proxy(), L"-Install and more", WritesOn::Nothing);
    Quit(boot);
}

TEST_F(Control, IsRefusedWhileAnotherInstanceHasIt)
{
    LegacyOrganiser organiser;
    ChildProcess first(app.Proxy());
    ASSERT_NE(AwaitWindow(first.Id(), kBootTitle), nullptr);
    EXPECT_TRUE(AwaitOrders(organiser, {"-d"}));

    ChildProcess second(app.Proxy());
    EXPECT_EQ(second.ExitCode(), kNotInControl);
    EXPECT_THAT(trace.LinesOf(second.Id()), ElementsAre(kOtherRunning));
    // The second one too stops the legacy organiser's own reaction to devices.
    EXPECT_TRUE(AwaitOrders(organiser, {"-d", "-d"}));
    EXPECT_TRUE(first.Running());
    Quit(first);

    ChildProcess third(app.Proxy());
    Quit(third);
    EXPECT_TRUE(AwaitOrders(organiser, {"-d", "-d", "-d"}));
}

TEST_F(Control, IsTakenByExactlyOneOfTwoThatStartAtTheSameMoment)
{
    Installation other(L"Other");
    for (int round = 0; round < 20; ++round) {
        trace.Clear();
        ChildProcess one(app.Proxy());
        ChildProcess two(other.Proxy());
        const HANDLE both[] = {one.Handle(), two.Handle()};
        const DWORD ended = ::WaitForMultipleObjects(2, both, FALSE, 60'000);
        ASSERT_LE(ended, WAIT_OBJECT_0 + 1) << "one of them is refused, in round " << round;
        ChildProcess& refused = ended == WAIT_OBJECT_0 ? one : two;
        ChildProcess& inControl = ended == WAIT_OBJECT_0 ? two : one;
        EXPECT_EQ(refused.ExitCode(), kNotInControl);
        Quit(inControl);
        EXPECT_EQ(trace.Count(kTookControl), 1);
        EXPECT_EQ(trace.Count(kOtherRunning), 1);
    }
}

TEST_F(Control, UnknownArgumentsPrintTheUsageAndExit)
{
    for (const wchar_t* const arguments :
         {L"/install", L"install", L"-x", L"\"\"", L"--install", L"-help", L"--versions"}) {
        ChildProcess boot(app.Proxy(), arguments);
        EXPECT_EQ(boot.ExitCode(), kUsage) << std::filesystem::path(arguments);
        EXPECT_THAT(trace.LinesOf(boot.Id()), ElementsAre());
        EXPECT_EQ(boot.Output(), kUsageText);
    }
}

TEST_F(Control, ADefaultWithTooFewOrTooManyWordsPrintsTheSyntaxOnce)
{
    for (const wchar_t* const arguments : {L"-default", L"-Default App", L"-default App yes extra"}) {
        ChildProcess boot(app.Proxy(), arguments);
        EXPECT_EQ(boot.ExitCode(), kUsage) << std::filesystem::path(arguments);
        EXPECT_THAT(trace.LinesOf(boot.Id()), ElementsAre());
        EXPECT_EQ(boot.Output(), kDefaultSyntax);
    }
}

TEST_F(Control, IsNotTakenByHelpOrVersion)
{
    for (const wchar_t* const arguments : {L"--help", L"-h", L"/?", L"-H", L"--HELP and more"}) {
        ChildProcess boot(app.Proxy(), arguments);
        EXPECT_EQ(boot.ExitCode(), kDone) << std::filesystem::path(arguments);
        EXPECT_EQ(boot.Output(), kUsageText);
        EXPECT_THAT(trace.LinesOf(boot.Id()), ElementsAre());
    }
    ChildProcess boot(app.Proxy(), L"--version");
    EXPECT_EQ(boot.ExitCode(), kDone);
    EXPECT_EQ(boot.Output(), VersionText());
    EXPECT_EQ(AutoRunEntry(), L"(none)");
}

struct OemCase {
    const char* what;
    std::string contents;
    bool hasOption;
    bool stops;
};

class OemFile : public Control, public testing::WithParamInterface<OemCase>
{
};

TEST_P(OemFile, DecidesWhetherTheInstallGoesOn)
{
    app.AddOemFile(GetParam().contents);
    ChildProcess boot(app.Proxy());
    std::vector<std::string> expected{kTookControl, kFolderSet, kOemFound};
    if (GetParam().hasOption) {
        expected.push_back(kOemOption);
    }
    if (GetParam().stops) {
        expected.push_back(kOemStops);
        EXPECT_EQ(boot.ExitCode(), kNotInControl);
    } else {
        Quit(boot);
    }
    std::vector<std::string> lines = trace.LinesOf(boot.Id());
    lines.resize(std::min(lines.size(), expected.size() + (GetParam().stops ? 1 : 0)));
    EXPECT_EQ(lines, expected);
}

std::string Section(const std::string& lines)
{
    return "[KestraProxyStopInstall]\r\n" + lines + "\r\n[Other]\r\nx=1\r\n";
}

INSTANTIATE_TEST_SUITE_P(
    FirstLine, OemFile,
    testing::Values(
        OemCase{"One", Section("1"), true, true}, OemCase{"ZeroOne", Section("01"), true, true},
        OemCase{"BlankOne", Section(" 1"), true, true}, OemCase{"OneX", Section("1x"), true, true},
        OemCase{"Two", Section("2"), true, false}, OemCase{"Eleven", Section("11"), true, false},
        OemCase{"MinusOne", Section("-1"), true, false}, OemCase{"Yes", Section("yes"), true, false},
        OemCase{"StopIsOne", Section("Stop=1"), true, false},
        OemCase{"OneInTheSecondLine", Section("2\r\n1"), true, false},
        OemCase{"EmptySection", Section(""), false, false},
        OemCase{"NoSection", "[Other]\r\n1\r\n", false, false}, OemCase{"EmptyFile", "", false, false},
        OemCase{"MoreThan64KiB", "[Filler]\r\n" + std::string(70'000, 'x') + "\r\n" + Section("1"), true,
                true},
        OemCase{"SectionLongerThanItsBuffer", Section("1" + std::string(5'000, 'y')), true, true}),
    [](const testing::TestParamInfo<OemCase>& file) {
        return file.param.what;
    });

TEST_F(Control, AnOemFileThatIsAFolderHasNoOption)
{
    app.folder.AddFolder(L"OEM/album.ini");
    ChildProcess boot(app.Proxy());
    Quit(boot);
    EXPECT_EQ(trace.Count(kOemFound), 1);
    EXPECT_EQ(trace.Count(kOemOption), 0);
}

TEST_F(Control, TheNextInstanceCanTakeItAfterTheOemFileStoppedOne)
{
    LegacyOrganiser organiser;
    app.AddOemFile(Section("1"));
    ChildProcess stopped(app.Proxy());
    EXPECT_EQ(stopped.ExitCode(), kNotInControl);

    Installation other(L"Other");
    ChildProcess next(other.Proxy());
    Quit(next);
    EXPECT_TRUE(AwaitOrders(organiser, {"-d"})) << "only the next instance stops the organiser";
}

TEST_F(Control, TheFolderOfTheExecutableBecomesTheCurrentOne)
{
    // The OEM file is looked up there, from whatever folder the program was started.
    app.AddOemFile(Section("1"));
    ::SetCurrentDirectoryW(L"C:\\");
    ChildProcess boot(app.Proxy());
    EXPECT_EQ(boot.ExitCode(), kNotInControl);
}

} // namespace
} // namespace kestraboot::tests
