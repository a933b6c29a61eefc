// The verdicts of the live trace viewer on a real card and a real boot program.
#include "samples/simulators/cards/card_slot.h"
#include "samples/simulators/cards/volume_message.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/unix_path.h"
#include "tests/system/installation.h"
#include "tests/system/running_viewer.h"
#include "tests/system/system_test.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>

namespace kestraboot::tests
{
namespace
{

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::StartsWith;

std::string Escaped(std::string path)
{
    for (std::size_t at = 0; (at = path.find('\\', at)) != std::string::npos; at += 2) {
        path.insert(at, 1, '\\');
    }
    return path;
}

class TraceArrivalsOfCards : public testing::Test
{
protected:
    TraceArrivalsOfCards() { ClearCorvaneRegistry(); }
    ~TraceArrivalsOfCards() override { static_cast<void>(simulators::TakeCardOut(L'E')); }

    void Start(const std::wstring& options)
    {
        app = std::make_unique<Installation>(L"App");
        PutText(HKEY_CURRENT_USER, L"Software\\Wine\\AppDefaults\\kestraboot.exe", L"Version", L"vista");
        viewer = std::make_unique<RunningViewer>(options);
        boot = std::make_unique<ChildProcess>(app->Proxy());
        window = AwaitWindow(boot->Id(), L"CardReaderLookupWindow");
        ASSERT_NE(window, nullptr);
    }

    void Insert()
    {
        ASSERT_TRUE(simulators::InsertCard(L'E', UnixPath(card.Path())));
        // There is no answer if the boot program finds no application left, and exits for that reason.
        simulators::SendVolumeMessage(window, DBT_DEVICEARRIVAL, L'E', SMTO_NORMAL, 30'000);
    }

    TempFolder card;
    std::unique_ptr<Installation> app;
    std::unique_ptr<RunningViewer> viewer;
    std::unique_ptr<ChildProcess> boot;
    HWND window = nullptr;
};

TEST_F(TraceArrivalsOfCards, SayWhatACardStarted)
{
    card.AddFile(L"DCIM/100TEST/IMG_0001.JPG", "picture");
    Start(L"--arrivals --json");
    Insert();
    const std::string verdict = viewer->Await("\"device\":\"E:\"");
    const std::string program = Escaped(app->Application().string());
    EXPECT_THAT(
        verdict,
        HasSubstr("\"process\":" + std::to_string(boot->Id()) +
                  ",\"name\":\"kestraboot.exe\","
                  "\"tracker\":\"VolumeTracker\",\"source\":\"REMOVABLE DEVICE\","
                  "\"kind\":\"volume\",\"device\":\"E:\",\"accepted\":true,"
                  "\"rule\":\"supported-file\",\"why\":\"IMG_0001.JPG is of a supported format\","
                  "\"attempts\":1,\"folders\":2,\"files\":1,\"deepestLevel\":3,"
                  "\"lastFile\":\"IMG_0001.JPG\",\"outcome\":\"started\",\"outcomeText\":\"\","
                  "\"application\":\"" +
                  program +
                  "\",\"mode\":\"direct\","
                  "\"startLine\":\"\\\"" +
                  program +
                  "\\\" module=kestrafetch params mode=direct "
                  "devType=volume priDevId=\\\"E:\\\"\",\"milliseconds\":"));
}

TEST_F(TraceArrivalsOfCards, SayWhyACardStartedNothing)
{
    card.AddFile(L"notes.txt");
    Start(L"--arrivals");
    Insert();
    EXPECT_THAT(
        viewer->Await("volume E:"),
        EndsWith("volume E: <VolumeTracker> refused: no file of a supported format was found within the "
                 "folder levels of \"SniffDepth\", or a folder could not be listed"));
    EXPECT_THAT(viewer->Await("saw "), EndsWith("saw 0 folders and 1 file, attempts: 3"));
}

TEST_F(TraceArrivalsOfCards, SayThatNoApplicationIsLeft)
{
    card.AddFile(L"IMG_0001.JPG", "picture");
    Start(L"--arrivals");
    std::filesystem::remove(app->Application());
    Insert();
    EXPECT_THAT(viewer->Await("volume E:"), EndsWith("volume E: <VolumeTracker> refused: no compatible "
                                                     "application is left: the process ends"));
}

TEST(TraceArrivals, OfOneTrackerAloneAreShownOnRequest)
{
    RunningViewer wia(L"--arrivals --only WiaTracker");
    ::OutputDebugStringW(L"<***DeviceConnect***><VolumeTracker><REMOVABLE DEVICE><V|E:>");
    ::OutputDebugStringW(L"<***DeviceConnect***><VolumeTracker><Launch not possible>.");
    ::OutputDebugStringW(L"Could not get the device type.");
    EXPECT_NE(wia.Await("<WiaTracker> refused"), "");
    EXPECT_EQ(wia.Lines().size(), 2U) << "the day and the verdict";
}

TEST(TraceArrivals, WithoutADeviceAreTheLaunchersOwn)
{
    RunningViewer launcher(L"--arrivals --only KestraBoot");
    ::OutputDebugStringW(L"Could not get the device type.");
    ::OutputDebugStringW(L"\"C:\\a.exe\" module=kestrafetch params mode=select");
    EXPECT_NE(launcher.Await("start without a device: "), "");
    EXPECT_EQ(launcher.Lines().size(), 3U) << "the day, the verdict of the start and its line";
}

TEST(TraceArrivals, ThatAreUndecidedArePrintedAtTheEnd)
{
    ChildProcess ending{BuiltPrograms() / "kestratrace.exe", L"--arrivals 2"};
    ASSERT_TRUE(AwaitReader());
    ::OutputDebugStringW(L"<***DeviceConnect***><VolumeTracker><REMOVABLE DEVICE><V|E:>");
    EXPECT_EQ(ending.ExitCode(), 0U);
    EXPECT_THAT(ending.Output(), HasSubstr("undecided: no further line came"));
}

} // namespace
} // namespace kestraboot::tests
