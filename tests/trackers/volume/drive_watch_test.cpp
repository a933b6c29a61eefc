#include "tests/trackers/volume/steered_drives.h"
#include "trackers/volume/drive_watch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr DriveMask Bit(wchar_t letter)
{
    return DriveMask{1} << (letter - L'A');
}

class Drives : public testing::Test
{
protected:
    std::wstring Chosen(const DriveWatch& watch)
    {
        const auto drive = watch.ChooseDriveToReport();
        return drive ? drive->text : L"";
    }

    tests::SteeredDrives machine;
};

using ReadableDrives = Drives;
using DriveChange = Drives;
using DriveChoice = Drives;

TEST_F(ReadableDrives, AreAllThatExistButRemovableOnesWithoutMedium)
{
    machine.drives = {{L'C', {}},
                      {L'D', {DRIVE_CDROM, false}},
                      {L'E', {DRIVE_REMOVABLE, false}},
                      {L'F', {DRIVE_REMOVABLE}},
                      {L'N', {DRIVE_REMOTE, false}},
                      {L'Z', {DRIVE_RAMDISK, false}}};
    EXPECT_EQ(ScanReadableDrives().readable, Bit(L'C') | Bit(L'D') | Bit(L'F') | Bit(L'N') | Bit(L'Z'));
    EXPECT_THAT(machine.probed, ElementsAre(L'E', L'F')) << "no other drive is accessed";
}

TEST_F(ReadableDrives, IncludeTheWholeAlphabet)
{
    for (wchar_t letter = L'A'; letter <= L'Z'; ++letter) {
        machine.drives[letter] = {DRIVE_REMOVABLE};
    }
    EXPECT_EQ(ScanReadableDrives().readable, 0x03FFFFFFU);
    EXPECT_EQ(machine.probed.size(), 24U);
}

TEST_F(ReadableDrives, AreOnlyThoseThatWindowsLists)
{
    machine.drives = {{L'C', {}}, {L'E', {DRIVE_REMOVABLE}}};
    const FAKE_IMPORT(GetLogicalDrives) listed([] {
        return DWORD{Bit(L'C')};
    });
    const DriveScan scan = ScanReadableDrives();
    EXPECT_EQ(scan.readable, Bit(L'C'));
    EXPECT_FALSE(scan.removablePresent);
    EXPECT_THAT(machine.probed, IsEmpty());
}

TEST_F(ReadableDrives, KeepDiskettesUnprobed)
{
    machine.drives = {{L'A', {DRIVE_REMOVABLE, false}}, {L'B', {DRIVE_REMOVABLE, false}}};
    const DriveScan scan = ScanReadableDrives();
    EXPECT_EQ(scan.readable, Bit(L'A') | Bit(L'B'));
    EXPECT_FALSE(scan.removablePresent);
    EXPECT_THAT(machine.probed, IsEmpty());
}

TEST_F(ReadableDrives, ReportARemovableDriveWithAndWithoutMedium)
{
    machine.drives = {{L'C', {}}};
    EXPECT_FALSE(ScanReadableDrives().removablePresent);
    machine.drives[L'E'] = {DRIVE_REMOVABLE, false};
    EXPECT_TRUE(ScanReadableDrives().removablePresent);
    machine.drives[L'E'] = {DRIVE_REMOVABLE, true};
    EXPECT_TRUE(ScanReadableDrives().removablePresent);
}

TEST_F(ReadableDrives, ShowNoErrorBoxAndRestoreThePreviousMode)
{
    machine.drives = {{L'E', {DRIVE_REMOVABLE, false}}};
    ::SetErrorMode(SEM_NOGPFAULTERRORBOX);
    static_cast<void>(ScanReadableDrives());
    EXPECT_EQ(::SetErrorMode(0), static_cast<UINT>(SEM_NOGPFAULTERRORBOX));
    EXPECT_THAT(machine.modesAtWork, Each(static_cast<UINT>(SEM_FAILCRITICALERRORS)));
}

TEST_F(DriveChange, DrivesThatArePresentAtTheStartAreKnown)
{
    machine.drives = {{L'C', {}}, {L'E', {DRIVE_REMOVABLE}}};
    DriveWatch watch;
    EXPECT_TRUE(watch.RemovablePresent());
    EXPECT_FALSE(watch.DetectChange());
    EXPECT_EQ(Chosen(watch), L"");
}

TEST_F(DriveChange, ACardInsertedIntoAReaderIsNewOnce)
{
    machine.drives = {{L'C', {}}, {L'E', {DRIVE_REMOVABLE, false}}};
    DriveWatch watch;
    machine.drives[L'E'].holdsMedium = true;
    EXPECT_TRUE(watch.DetectChange());
    EXPECT_EQ(Chosen(watch), L"E:");
    EXPECT_FALSE(watch.DetectChange());
}

TEST_F(DriveChange, ACardRemovedAndInsertedAgainIsNewAgain)
{
    machine.drives = {{L'C', {}}, {L'E', {DRIVE_REMOVABLE}}};
    DriveWatch watch;
    machine.drives[L'E'].holdsMedium = false;
    EXPECT_FALSE(watch.DetectChange());
    machine.drives[L'E'].holdsMedium = true;
    EXPECT_TRUE(watch.DetectChange());
}

TEST_F(DriveChange, AScanThatSeesNoDriveAtAllForgetsNothing)
{
    machine.drives = {{L'E', {DRIVE_REMOVABLE}}};
    DriveWatch watch;
    machine.drives[L'E'].holdsMedium = false; // the only drive
    EXPECT_FALSE(watch.DetectChange());
    EXPECT_TRUE(watch.RemovablePresent());
    machine.drives[L'E'].holdsMedium = true;
    EXPECT_FALSE(watch.DetectChange()) << "the drive is still known";
}

TEST_F(DriveChange, AScanThatSeesNoDriveAtAllStillReportsThatTheReaderIsGone)
{
    machine.drives = {{L'E', {DRIVE_REMOVABLE}}};
    DriveWatch watch;
    EXPECT_TRUE(watch.RemovablePresent());
    machine.drives.clear();
    EXPECT_FALSE(watch.DetectChange());
    EXPECT_FALSE(watch.RemovablePresent());
}

TEST_F(DriveChoice, IsTheLowestLetterAndTheOthersAreAbsorbed)
{
    machine.drives = {{L'C', {}}};
    DriveWatch watch;
    machine.drives[L'G'] = {DRIVE_REMOVABLE};
    machine.drives[L'F'] = {DRIVE_REMOVABLE};
    EXPECT_TRUE(watch.DetectChange());
    EXPECT_EQ(Chosen(watch), L"F:");
    EXPECT_FALSE(watch.DetectChange());
}

TEST_F(DriveChoice, SkipsADriveThatCannotHoldCameraMedia)
{
    machine.drives = {{L'C', {}}};
    DriveWatch watch;
    machine.drives[L'D'] = {DRIVE_FIXED};
    machine.drives[L'F'] = {DRIVE_CDROM};
    machine.drives[L'G'] = {DRIVE_REMOTE};
    EXPECT_TRUE(watch.DetectChange());
    EXPECT_EQ(Chosen(watch), L"");
    machine.drives[L'H'] = {DRIVE_REMOVABLE};
    EXPECT_TRUE(watch.DetectChange());
    EXPECT_EQ(Chosen(watch), L"H:");
}

TEST_F(DriveChoice, AcceptsAnyOtherDriveWithTheMakersFileSystem)
{
    for (const int type : {DRIVE_FIXED, DRIVE_CDROM, DRIVE_REMOTE}) {
        machine.drives = {{L'C', {}}};
        DriveWatch watch;
        machine.drives[L'K'] = {static_cast<UINT>(type), true, L"My KoDaK FS"};
        EXPECT_TRUE(watch.DetectChange());
        EXPECT_EQ(Chosen(watch), L"K:") << type;
    }
}

TEST_F(DriveChoice, SkipsADriveThatCannotBeReadAnyMore)
{
    machine.drives = {{L'C', {}}};
    DriveWatch watch;
    machine.drives[L'E'] = {DRIVE_REMOVABLE};
    machine.drives[L'F'] = {DRIVE_REMOVABLE};
    EXPECT_TRUE(watch.DetectChange());
    machine.drives[L'E'].holdsMedium = false;
    EXPECT_EQ(Chosen(watch), L"F:");
}

TEST_F(DriveChoice, IsNeverADiskette)
{
    machine.drives = {{L'C', {}}};
    DriveWatch watch;
    machine.drives[L'A'] = {DRIVE_REMOVABLE, true, L"kodak"};
    machine.drives[L'B'] = {DRIVE_FIXED, true, L"kodak"};
    EXPECT_TRUE(watch.DetectChange());
    EXPECT_EQ(Chosen(watch), L"");
    machine.drives[L'Z'] = {DRIVE_REMOVABLE};
    EXPECT_TRUE(watch.DetectChange());
    EXPECT_EQ(Chosen(watch), L"Z:");
}

TEST_F(DriveChoice, CanBeAnyLetterAfterTheDiskettes)
{
    for (wchar_t letter = L'C'; letter <= L'Z'; ++letter) {
        machine.drives = {{L'A', {}}};
        DriveWatch watch;
        machine.drives[letter] = {DRIVE_REMOVABLE};
        EXPECT_TRUE(watch.DetectChange());
        EXPECT_EQ(Chosen(watch), std::wstring(1, letter) + L":");
    }
}

TEST_F(DriveChoice, ShowsNoErrorBoxAndRestoresThePreviousMode)
{
    machine.drives = {{L'C', {}}};
    DriveWatch watch;
    machine.drives[L'E'] = {DRIVE_REMOVABLE};
    EXPECT_TRUE(watch.DetectChange());
    machine.modesAtWork.clear();
    ::SetErrorMode(SEM_NOGPFAULTERRORBOX);
    EXPECT_EQ(Chosen(watch), L"E:");
    EXPECT_EQ(::SetErrorMode(0), static_cast<UINT>(SEM_NOGPFAULTERRORBOX));
    EXPECT_THAT(machine.modesAtWork, Each(static_cast<UINT>(SEM_FAILCRITICALERRORS)));
}

} // namespace
} // namespace kestraboot
