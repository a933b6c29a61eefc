#include "tests/trackers/volume/card_scene.h"
#include "trackers/volume/volume_scan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using Events = std::vector<tests::CardScene::Event>;
using testing::ElementsAre;
using testing::IsEmpty;
using tests::kEnteringPolling;
using tests::kExitingPolling;

class VolumeScanning : public testing::Test
{
protected:
    VolumeScanning() { scene.trace.Clear(); }

    /// The lines traced since the last call.
    std::vector<std::wstring> NewLines()
    {
        std::vector<std::wstring> lines = scene.trace.Lines();
        scene.trace.Clear();
        return lines;
    }

    static std::vector<std::wstring> Then(std::vector<std::wstring> lines, const std::wstring& last)
    {
        lines.push_back(last);
        return lines;
    }

    tests::CardScene scene;
    DriveWatch watch;
    VolumeScan scan{watch};
};

TEST_F(VolumeScanning, ACardWithAPictureIsTracedReportedAndPolledFor)
{
    scene.InsertCard(L'E');
    scan.Trigger();
    EXPECT_EQ(scene.Events(), (Events{{L"volume", L"E:"}}));
    EXPECT_EQ(NewLines(), Then(tests::LinesOfACard(L'E', true), kEnteringPolling));
    EXPECT_TRUE(scan.Polling());
}

TEST_F(VolumeScanning, ACardWithoutPicturesIsTracedAndNotReported)
{
    scene.InsertCard(L'E', false);
    scan.Trigger();
    EXPECT_THAT(scene.Events(), IsEmpty());
    EXPECT_EQ(NewLines(), Then(tests::LinesOfACard(L'E', false), kEnteringPolling));
}

TEST_F(VolumeScanning, TwoCardsInTheSameScanGiveOneReportOfTheLowerLetter)
{
    scene.InsertCard(L'G');
    scene.InsertCard(L'F');
    scan.Trigger();
    scan.Scan();
    EXPECT_EQ(scene.Events(), (Events{{L"volume", L"F:"}}));
}

TEST_F(VolumeScanning, AChangeThatCannotBeACardIsNotTraced)
{
    scene.machine.Put(L'D', {DRIVE_FIXED});
    scan.Trigger();
    EXPECT_THAT(scene.Events(), IsEmpty());
    EXPECT_THAT(NewLines(), IsEmpty());
}

TEST_F(VolumeScanning, WithoutAChangeNothingIsTraced)
{
    scan.Trigger();
    EXPECT_THAT(NewLines(), IsEmpty());
    EXPECT_FALSE(scan.Polling());
}

TEST_F(VolumeScanning, AScanThatSeesNoDriveAtAllDoesNotRepeatTheLastReport)
{
    scene.InsertCard(L'E');
    scan.Trigger();
    NewLines();
    const FAKE_IMPORT(GetLogicalDrives) none([] {
        return DWORD{0};
    });
    scan.Scan();
    EXPECT_EQ(scene.Events().size(), 1U);
    EXPECT_THAT(NewLines(), ElementsAre(kExitingPolling));
}

TEST_F(VolumeScanning, AnEmptyReaderAloneStartsPolling)
{
    scene.TakeCardOut(L'E');
    scan.Trigger();
    EXPECT_THAT(NewLines(), ElementsAre(kEnteringPolling));
    scan.Scan();
    EXPECT_THAT(NewLines(), IsEmpty()) << "a line is written only when the mode changes";
}

TEST_F(VolumeScanning, PollingEndsWithTheLastRemovableDrive)
{
    scene.InsertCard(L'E');
    scene.TakeCardOut(L'F');
    scan.Trigger();
    NewLines();
    scene.UnplugReader(L'E');
    scan.Scan();
    EXPECT_THAT(NewLines(), IsEmpty());
    scene.UnplugReader(L'F');
    scan.Scan();
    EXPECT_THAT(NewLines(), ElementsAre(kExitingPolling));
    EXPECT_FALSE(scan.Polling());
}

TEST_F(VolumeScanning, ATriggerWhilePollingIsLeftToTheNextScan)
{
    scene.TakeCardOut(L'E');
    scan.Trigger();
    scene.InsertCard(L'E');
    scan.Trigger();
    EXPECT_THAT(scene.Events(), IsEmpty());
    scan.Scan();
    EXPECT_EQ(scene.Events(), (Events{{L"volume", L"E:"}}));
}

TEST_F(VolumeScanning, TheNextScanIsDueHalfASecondAfterTheLast)
{
    ULONGLONG now = 10'000;
    const FAKE_IMPORT(GetTickCount64) clock([&] {
        return now;
    });
    EXPECT_EQ(scan.MillisecondsToNextScan(), INFINITE);
    scene.TakeCardOut(L'E');
    scan.Trigger();
    EXPECT_EQ(scan.MillisecondsToNextScan(), 500U);
    now += 499;
    EXPECT_EQ(scan.MillisecondsToNextScan(), 1U);
    now += 1;
    EXPECT_EQ(scan.MillisecondsToNextScan(), 0U);
    now += 1;
    EXPECT_EQ(scan.MillisecondsToNextScan(), 0U);
    now += 100'000;
    EXPECT_EQ(scan.MillisecondsToNextScan(), 0U);
    scan.Scan();
    EXPECT_EQ(scan.MillisecondsToNextScan(), 500U);
}

TEST_F(VolumeScanning, TheHalfSecondBeginsAtTheEndOfThePreviousScan)
{
    ULONGLONG now = 10'000;
    const FAKE_IMPORT(GetTickCount64) clock([&] {
        return now;
    });
    scene.whileReporting = [&] {
        now += 3'000; // the host takes 3 seconds
    };
    scene.InsertCard(L'E');
    scan.Trigger();
    EXPECT_EQ(scan.MillisecondsToNextScan(), 500U);
}

TEST_F(VolumeScanning, ATriggerFromInsideAReportIsAnsweredByOneMoreScanNotByANestedOne)
{
    // A fixed disk of the maker, so that polling does not take over the second scan.
    scene.machine.Put(L'K', {DRIVE_FIXED, true, L"kodak"});
    int depth = 0;
    scene.whileReporting = [&] {
        ++depth;
        EXPECT_EQ(depth, 1);
        if (scene.Events().size() == 1) {
            scene.machine.Put(L'L', {DRIVE_FIXED, true, L"kodak"});
            scan.Trigger();
            EXPECT_EQ(scene.Events().size(), 1U);
        }
        --depth;
    };
    // Both disks hold a picture.
    scene.InsertCard(L'L');
    scene.machine.Remove(L'L');
    scene.InsertCard(L'K');
    scene.machine.Put(L'K', {DRIVE_FIXED, true, L"kodak"});
    scan.Trigger();
    EXPECT_EQ(scene.Events(), (Events{{L"volume", L"K:"}, {L"volume", L"L:"}}));
}

TEST_F(VolumeScanning, ATriggerFromInsideAReportIsLeftToTheNextScanIfPollingBegan)
{
    scene.whileReporting = [&] {
        scene.InsertCard(L'F');
        scan.Trigger();
    };
    scene.InsertCard(L'E');
    scan.Trigger();
    EXPECT_EQ(scene.Events(), (Events{{L"volume", L"E:"}}));
    scan.Scan();
    EXPECT_EQ(scene.Events(), (Events{{L"volume", L"E:"}, {L"volume", L"F:"}}));
}

TEST_F(VolumeScanning, ACallbackThatThrowsDoesNotStopTheTracker)
{
    scene.whileReporting = [] {
        throw 1;
    };
    scene.InsertCard(L'E');
    scan.Trigger();
    scene.InsertCard(L'F');
    scan.Scan();
    EXPECT_EQ(scene.Events(), (Events{{L"volume", L"E:"}, {L"volume", L"F:"}}));
}

} // namespace
} // namespace kestraboot
