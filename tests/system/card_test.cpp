// A card in a reader starts an application, with real drives.
#include "samples/simulators/cards/card_slot.h"
#include "samples/simulators/cards/volume_message.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/unix_path.h"
#include "tests/system/system_test.h"

#include <dbt.h>

namespace kestraboot::tests
{
namespace
{

const std::string kTracker = "<***DeviceConnect***><VolumeTracker>";

class Card : public SystemTest
{
protected:
    ~Card() override { static_cast<void>(simulators::TakeCardOut(L'E')); }

    void Start()
    {
        SetWindowsVersion(L"kestraboot.exe", L"vista");
        boot = std::make_unique<ChildProcess>(app.Proxy());
        ASSERT_NE(AwaitWindow(boot->Id(), kBootTitle), nullptr);
        window = AwaitWindow(boot->Id(), kVolumeWindow);
        ASSERT_NE(window, nullptr);
        AwaitTrackers({kNoWia, kNoSti, kNoPhones});
    }

    /// Inserts the card and notifies the tracker's window, as Windows would.
    void Insert()
    {
        ASSERT_TRUE(simulators::InsertCard(L'E', UnixPath(card.Path())));
        ASSERT_TRUE(simulators::SendVolumeMessage(window, DBT_DEVICEARRIVAL, L'E', SMTO_NORMAL, 30'000));
    }

    std::string StartLine() const
    {
        return "\"" + app.Application().string() +
               "\" module=kestrafetch params mode=direct devType=volume priDevId=\"E:\"";
    }

    Installation app{L"App"};
    TempFolder card;
    std::unique_ptr<ChildProcess> boot;
    HWND window = nullptr;
};

TEST_F(Card, WithAPictureStartsTheApplication)
{
    card.AddFile(L"DCIM/100TEST/IMG_0001.JPG", "picture");
    Start();
    Insert();
    ASSERT_TRUE(trace.Await(StartLine()));
    ASSERT_TRUE(Within(20'000, [&] {
        return app.Report().ends_with("pictures: 1\n");
    }));
    EXPECT_EQ(app.Report(),
              "command line: " + StartLine() +
                  "\nmode: direct\ndevice: volume E:\npicture: E:\\DCIM\\100TEST\\IMG_0001.JPG\n"
                  "pictures: 1\n");
    Quit(*boot);
}

TEST_F(Card, WithoutPicturesStartsNothing)
{
    card.AddFile(L"notes.txt");
    Start();
    Insert();
    EXPECT_TRUE(trace.Await(kTracker + "<Launch not possible>."));
    EXPECT_EQ(app.Report(), "");
    Quit(*boot);
}

TEST_F(Card, IsFoundByPollingWithoutANotification)
{
    Start();
    Insert(); // an empty card makes the tracker poll
    ASSERT_TRUE(trace.Await(kTracker + "<Entering in polling mode.>"));
    card.AddFile(L"IMG_0001.JPG", "picture");
    for (int round = 1; round <= 3; ++round) {
        ASSERT_TRUE(simulators::TakeCardOut(L'E'));
        ASSERT_TRUE(trace.Await(kTracker + "<Exiting from polling mode.>"));
        ::SendMessageW(window, WM_NULL, 0, 0);
        trace.Clear();
        ASSERT_TRUE(simulators::InsertCard(L'E', UnixPath(card.Path())));
        ::PostMessageW(window, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0);
        ASSERT_TRUE(trace.Await(StartLine())) << round;
        EXPECT_EQ(trace.Count(StartLine()), 1);
        ASSERT_TRUE(trace.Await(kTracker + "<Entering in polling mode.>"));
    }
    Quit(*boot);
}

TEST_F(Card, ThatIsPresentAtTheStartIsNotReportedAndTheWindowAnswersWhilePolling)
{
    card.AddFile(L"IMG_0001.JPG", "picture");
    ASSERT_TRUE(simulators::InsertCard(L'E', UnixPath(card.Path())));
    Start();
    ASSERT_TRUE(trace.Await(kTracker + "<Entering in polling mode.>"));
    for (int i = 0; i < 20; ++i) {
        DWORD_PTR answer = 0;
        EXPECT_NE(::SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_BLOCK, 2'000, &answer), 0);
    }
    EXPECT_EQ(trace.Count(kTracker + "<REMOVABLE DEVICE><V|E:>"), 0);
    Quit(*boot);
}

TEST_F(Card, WithTooDeepAPictureStartsNothing)
{
    PutDword(HKEY_CURRENT_USER, app.KeyPath(), L"SniffDepth", 2);
    card.AddFile(L"DCIM/100TEST/IMG_0001.JPG", "picture");
    Start();
    Insert();
    EXPECT_TRUE(trace.Await(kTracker + "<Launch not possible>."));
    EXPECT_EQ(app.Report(), "");
    Quit(*boot);
}

TEST_F(Card, WithSeveralApplicationsIsOfferedInSelectMode)
{
    Installation other(L"Second");
    card.AddFile(L"IMG_0001.JPG", "picture");
    Start();
    Insert();
    std::string line = StartLine();
    line.replace(line.find("mode=direct"), 11, "mode=select");
    EXPECT_TRUE(trace.Await(line));
    EXPECT_TRUE(Within(20'000, [&] {
        return app.Report().find("mode: select\n") != std::string::npos;
    }));
    Quit(*boot);
}

TEST_F(Card, WithNoApplicationLeftStartsTheLegacyOrganisersProgramAndEndsTheProcess)
{
    const LegacyOrganiser organiser;
    Start();
    ASSERT_TRUE(AwaitOrders(organiser, {"-d"}));
    app.Unregister();
    ASSERT_TRUE(simulators::InsertCard(L'E', UnixPath(card.Path())));
    // The process may exit before its window answers.
    static_cast<void>(
        simulators::SendVolumeMessage(window, DBT_DEVICEARRIVAL, L'E', SMTO_NORMAL, 30'000));
    EXPECT_EQ(boot->ExitCode(), kDone);
    EXPECT_TRUE(AwaitOrders(organiser, {"-d", "-i"}));
    EXPECT_EQ(app.Report(), "");
}

struct VersionCase {
    const wchar_t* version;
    bool watched;
    std::vector<std::string> others; ///< lines of the other trackers
};

class OnWindows : public Card, public testing::WithParamInterface<VersionCase>
{
};

TEST_P(OnWindows, VolumesAreWatchedOrIgnored)
{
    const std::wstring program = std::wstring(L"boot_") + GetParam().version + L".exe";
    Installation own(L"Own", L"kestraboot.exe", program);
    SetWindowsVersion(program, GetParam().version);
    ChildProcess process(own.Proxy());
    ASSERT_NE(AwaitWindow(process.Id(), kBootTitle), nullptr);
    if (GetParam().watched) {
        EXPECT_NE(AwaitWindow(process.Id(), kVolumeWindow), nullptr);
    }
    AwaitTrackers(GetParam().others);
    Quit(process);
    EXPECT_EQ(trace.Count(kVolumes), GetParam().watched ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(Version, OnWindows,
                         testing::Values(VersionCase{L"winxp", true, {kNoWia, kNoSti, kNoPhones}},
                                         VersionCase{L"win2k", true, {kNoSti, kNoPhones}},
                                         VersionCase{L"vista", true, {kNoWia, kNoSti, kNoPhones}},
                                         VersionCase{L"winxp64", false, {kNoPhones}},
                                         VersionCase{L"win2003", false, {kNoPhones}},
                                         VersionCase{L"win2008", false, {kNoPhones}},
                                         VersionCase{L"win7", false, {kNoPhones}},
                                         VersionCase{L"win10", false, {kNoPhones}}),
                         [](const testing::TestParamInfo<VersionCase>& version) {
                             return std::filesystem::path(version.param.version).string();
                         });

} // namespace
} // namespace kestraboot::tests
