#include "service/media_sniffer.h"
#include "service/sniff_depth.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/compatible_application.h"
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trace_recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

const std::wstring kTag = L"<***DeviceConnect***>";
const std::wstring kFails = kTag + L"<Supported media content check fails...Trying again.>";
const std::wstring kNothing = kTag + L"<Volume does not contain supported media content.>";
const std::wstring kSuppressed = kTag + L"<Suppressing auto launch...>";
const std::wstring kUnsupported = kTag + L"<Unsupported volume found.>";

/// A volume in a real folder, an application whose proxy is this program, and a Sleep that does not
/// wait.
class MediaSniffer : public testing::Test
{
protected:
    void SetUp() override
    {
        own.keyPath = L"SOFTWARE\\Corvane\\Own\\Corvane Kestrafetch";
        own.proxyPath = tests::RunningExecutable();
        own.commandPath = files.AddFile(L"own.exe").wstring();
        own.image = L"jpg tif";
        tests::Register(own);
        tests::MakeKey(HKEY_CURRENT_USER, own.keyPath);
    }

    void SetDepth(std::uint32_t depth)
    {
        tests::PutDword(HKEY_CURRENT_USER, own.keyPath, L"SniffDepth", depth);
    }

    [[nodiscard]] bool Check() { return CheckVolumeForMedia(volume.Path().wstring()); }
    [[nodiscard]] bool Sniff() { return SniffMediaContent(volume.Path().wstring()); }

    tests::RegistrySandbox registry;
    tests::TempFolder files;
    tests::TempFolder volume;
    tests::CompatibleApplication own;
    tests::TraceRecorder trace;
    UINT driveType = DRIVE_REMOVABLE;
    std::vector<DWORD> sleeps;
    FAKE_IMPORT(GetDriveTypeW)
    drives{[this](const wchar_t*) {
        return driveType;
    }};
    FAKE_IMPORT(Sleep)
    sleep{[this](DWORD milliseconds) {
        sleeps.push_back(milliseconds);
    }};
};

TEST_F(MediaSniffer, ACardWithAPictureIsAcceptedAtOnce)
{
    volume.AddFile(L"IMG_0001.JPG");
    EXPECT_TRUE(Check());
    EXPECT_THAT(sleeps, IsEmpty());
}

TEST_F(MediaSniffer, ACardWithoutPicturesIsRefusedAfterThreeTriesASecondApart)
{
    EXPECT_FALSE(Check());
    EXPECT_THAT(trace.Lines(), ElementsAre(kFails, kFails, kFails, kNothing));
    EXPECT_THAT(sleeps, ElementsAre(1000, 1000, 1000));
    EXPECT_EQ(drives.Calls(), 1) << "the type of the drive is queried once";
}

TEST_F(MediaSniffer, AFailedTryIsTracedBeforeThePauseAfterIt)
{
    std::vector<int> tracedAtPause;
    const FAKE_IMPORT(Sleep) pause([&](DWORD) {
        tracedAtPause.push_back(trace.Count(kFails));
    });
    EXPECT_FALSE(Check());
    EXPECT_THAT(tracedAtPause, ElementsAre(1, 2, 3));
}

TEST_F(MediaSniffer, ACardThatSettlesDuringTheTriesIsAccepted)
{
    const FAKE_IMPORT(Sleep) settling([&](DWORD) {
        if (settling.Calls() == 2) {
            volume.AddFile(L"late.tif");
        }
    });
    EXPECT_TRUE(Check());
    EXPECT_EQ(trace.Count(kFails), 2);
    EXPECT_EQ(trace.Count(kNothing), 0);
}

TEST_F(MediaSniffer, AnUnsuitableDriveIsRefusedUnread)
{
    driveType = DRIVE_CDROM;
    volume.AddFile(L"IMG_0001.JPG");
    EXPECT_FALSE(Check());
    EXPECT_THAT(trace.Lines(), ElementsAre(kUnsupported));
    EXPECT_THAT(sleeps, IsEmpty());
}

TEST_F(MediaSniffer, DepthZeroDisablesReportsWithoutReadingTheVolume)
{
    SetDepth(0);
    volume.AddFile(L"IMG_0001.JPG");
    const FAKE_IMPORT(FindFirstFileW) untouched([](const wchar_t* pattern, WIN32_FIND_DATAW*) {
        ADD_FAILURE() << "listed " << std::filesystem::path(pattern).string();
        return INVALID_HANDLE_VALUE;
    });
    // The volume must not be listed. The existence checks of the applications' files list nothing.
    EXPECT_FALSE(Check());
    EXPECT_THAT(trace.Lines(),
                ElementsAre(kSuppressed, kFails, kSuppressed, kFails, kSuppressed, kFails, kNothing));
}

TEST_F(MediaSniffer, DepthOneSearchesTheRootAlone)
{
    SetDepth(1);
    volume.AddFile(L"DCIM/IMG_0001.JPG");
    EXPECT_FALSE(Sniff());
    volume.AddFile(L"IMG_0002.JPG");
    EXPECT_TRUE(Sniff());
}

TEST_F(MediaSniffer, DepthFourAppliesIfTheValueIsMissingOrNegative)
{
    volume.AddFile(L"1/2/3/IMG_0001.JPG"); // on the fourth level
    EXPECT_TRUE(Sniff());
    for (const std::uint32_t depth : {0xFFFFFFFFU, 0xFFFFFFFEU, 0x80000000U}) {
        SetDepth(depth);
        EXPECT_TRUE(Sniff()) << depth;
    }
    volume.AddFile(L"a/b/c/d/deeper.tif");
    std::filesystem::remove(volume.Path() / L"1/2/3/IMG_0001.JPG");
    EXPECT_FALSE(Sniff());
    SetDepth(5);
    EXPECT_TRUE(Sniff());
}

TEST_F(MediaSniffer, DepthFourAppliesIfTheUserHasNoKeyOfTheApplication)
{
    SetDepth(1);
    volume.AddFile(L"DCIM/IMG_0001.JPG");
    EXPECT_FALSE(Sniff());
    tests::RemoveKey(HKEY_CURRENT_USER, own.keyPath);
    EXPECT_TRUE(Sniff());
}

TEST_F(MediaSniffer, DepthIsTheRunningApplicationsOwn)
{
    SetDepth(1);
    volume.AddFile(L"DCIM/IMG_0001.JPG");
    // The installed application has another proxy now, so this program is no proxy.
    own.proxyPath = own.commandPath;
    tests::Register(own);
    EXPECT_TRUE(Sniff());
    // A value at the root of the user's registry does not count either.
    tests::PutDword(HKEY_CURRENT_USER, L"", L"SniffDepth", 1);
    EXPECT_TRUE(Sniff());
}

TEST_F(MediaSniffer, DepthIsReadWithNoMoreThanReadAccess)
{
    std::vector<REGSAM> accesses;
    const FAKE_IMPORT(RegOpenKeyExW)
        open([&](HKEY root, const wchar_t* path, DWORD options, REGSAM access, HKEY* key) -> LSTATUS {
            if (root == HKEY_CURRENT_USER && path == own.keyPath) {
                accesses.push_back(access);
            }
            return open.CallOriginal(root, path, options, access, key);
        });
    EXPECT_FALSE(Sniff());
    EXPECT_THAT(accesses, ElementsAre(REGSAM{KEY_READ}));
}

TEST_F(MediaSniffer, DepthIsNotReadFromTheMachinesHive)
{
    tests::PutDword(HKEY_LOCAL_MACHINE, own.keyPath, L"SniffDepth", 1);
    volume.AddFile(L"DCIM/IMG_0001.JPG");
    EXPECT_TRUE(Sniff());
}

TEST_F(MediaSniffer, DepthIsNeverTheDefaultOneBecauseMemoryRanOut)
{
    SetDepth(0);
    CKestraBootInformationHandler handler;
    int depth = -1;
    EXPECT_GT(tests::ForEveryAllocation(
                  [&] {
                      depth = ReadSniffDepth(handler);
                  },
                  [](bool threw) {
                      EXPECT_TRUE(threw);
                  },
                  tests::Shortage::Once),
              20);
    EXPECT_EQ(depth, 0);
}

TEST_F(MediaSniffer, OnlyTheDefaultApplicationsFormatsAreSearchedFor)
{
    tests::CompatibleApplication other = own;
    other.keyPath = L"SOFTWARE\\Corvane\\Other\\Corvane Kestrafetch";
    other.proxyPath = other.commandPath;
    other.image = L"raw";
    tests::Register(other);
    volume.AddFile(L"x.raw");
    EXPECT_TRUE(Sniff()); // without a default application, the formats of all applications count
    tests::PutDword(HKEY_CURRENT_USER, own.keyPath + L"\\Preferences", L"DefaultFlag", 1);
    EXPECT_FALSE(Sniff());
}

TEST_F(MediaSniffer, AudioIsNotSearchedFor)
{
    tests::PutText(HKEY_LOCAL_MACHINE, own.keyPath + L"\\File Formats", L"Audio", L"mp3");
    volume.AddFile(L"song.mp3");
    EXPECT_FALSE(Sniff());
    tests::PutText(HKEY_LOCAL_MACHINE, own.keyPath + L"\\File Formats", L"Video", L"mp3");
    EXPECT_TRUE(Sniff());
}

TEST_F(MediaSniffer, ARootPathTooLongForItsFieldIsCut)
{
    for (const std::size_t length : {259U, 260U, 261U, 32'767U}) {
        std::wstring listed;
        const FAKE_IMPORT(FindFirstFileW) first([&](const wchar_t* pattern, WIN32_FIND_DATAW*) {
            listed = pattern;
            return INVALID_HANDLE_VALUE;
        });
        EXPECT_FALSE(SniffMediaContent(std::wstring(length, L'v')));
        EXPECT_EQ(listed, std::wstring(259, L'v') + L"\\*") << length;
    }
}

TEST_F(MediaSniffer, TheDriveOfATooLongRootPathIsQueriedByTheCutPath)
{
    std::wstring asked;
    const FAKE_IMPORT(GetDriveTypeW) type([&](const wchar_t* root) -> UINT {
        asked = root;
        return DRIVE_CDROM;
    });
    EXPECT_FALSE(CheckVolumeForMedia(std::wstring(300, L'v')));
    EXPECT_EQ(asked, std::wstring(259, L'v'));
}

TEST_F(MediaSniffer, AnExceptionInTheWalkEndsTheSearch)
{
    const FAKE_IMPORT(FindFirstFileW) first([](const wchar_t*, WIN32_FIND_DATAW*) -> HANDLE {
        throw std::bad_alloc();
    });
    ::SetErrorMode(SEM_NOGPFAULTERRORBOX);
    EXPECT_FALSE(Sniff());
    EXPECT_EQ(::SetErrorMode(0), static_cast<UINT>(SEM_NOGPFAULTERRORBOX));
}

} // namespace
} // namespace kestraboot
