// The product calls Windows only for its work: as often as the floors of the benchmarks.
#include "bench/floors/applications.h"
#include "bench/floors/drives.h"
#include "bench/floors/road.h"
#include "bench/floors/walk.h"
#include "kestraboot/command_handler.h"
#include "kestraboot/device_connect.h"
#include "service/dispatch.h"
#include "service/media_walk.h"
#include "tests/cost/call_count.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/spawn_recorder.h"
#include "tests/support/temp_folder.h"
#include "trackers/volume/volume_scan.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using tests::CallCounts;
using tests::CallsOf;

ExtensionSet Pictures()
{
    return ExtensionSet({{L"jpg", L"Image"}, {L"tif", L"Image"}});
}

/// A removable drive E: with the contents of a folder. No other drive exists.
class CardInDrive
{
public:
    explicit CardInDrive(const tests::TempFolder& folder) : contents(folder) {}
    void Insert() noexcept { inserted = true; }

private:
    const tests::TempFolder& contents;
    bool inserted = false;

    FAKE_IMPORT(GetLogicalDrives)
    letters{[] {
        return DWORD{1} << 4;
    }};
    FAKE_IMPORT(GetDriveTypeW)
    type{[](const wchar_t*) {
        return UINT{DRIVE_REMOVABLE};
    }};
    FAKE_IMPORT(GetVolumeInformationW)
    volume{[this](const wchar_t*, wchar_t*, DWORD, DWORD*, DWORD*, DWORD*, wchar_t*, DWORD) -> BOOL {
        return inserted;
    }};
    FAKE_IMPORT(FindFirstFileW)
    first{[this](const wchar_t* pattern, WIN32_FIND_DATAW* entry) {
        return first.CallOriginal((contents.Path().wstring() + (pattern + 2)).c_str(), entry);
    }};
};

/// Each scan also asks for the time, to set the time of the next one.
CallCounts WithTheTrackersOwn(CallCounts look)
{
    ++look["GetTickCount64"];
    return look;
}

TEST(Calls, OfTheMediaWalkEqualItsFloor)
{
    const tests::TempFolder volume;
    volume.AddFile("a.txt");
    volume.AddFile("DCIM/100TEST/b.txt");
    volume.AddFile("one/two/three/four/too deep.txt");
    const std::wstring root = volume.Path().wstring();
    const CallCounts floor = CallsOf([&] {
        bench::TracedWalk(root, 4);
    });
    EXPECT_EQ(floor.at("OutputDebugStringW"), 8);
    EXPECT_EQ(CallsOf([&] {
                  EXPECT_FALSE(FindSupportedFile(root.c_str(), 4, Pictures()));
              }),
              floor);
}

TEST(Calls, OfTheMediaWalkEndAtTheMatch)
{
    const tests::TempFolder volume;
    volume.AddFile("a.txt");
    volume.AddFile("DCIM/100TEST/b.jpg");
    volume.AddFile("DCIM/100TEST/c.txt");
    const std::wstring root = volume.Path().wstring();
    const CallCounts floor = CallsOf([&] {
        EXPECT_TRUE(bench::TracedSearch(root, 4, L"jpg"));
    });
    EXPECT_EQ(CallsOf([&] {
                  EXPECT_TRUE(FindSupportedFile(root.c_str(), 4, Pictures()));
              }),
              floor);
}

TEST(Calls, OfADriveScanEqualItsFloorAndTheTime)
{
    const tests::TempFolder nothing;
    const CardInDrive card(nothing);
    DriveWatch watch;
    VolumeScan scan(watch);
    scan.Scan();
    const CallCounts floor = CallsOf([] {
        bench::LookAtDrives();
    });
    EXPECT_EQ(floor.at("GetVolumeInformationW"), 1);
    EXPECT_EQ(CallsOf([&] {
                  scan.Scan();
              }),
              WithTheTrackersOwn(floor));
}

/// Two applications. The first one is the default application, and its proxy is this program.
class CallsWithApplications : public testing::Test
{
protected:
    CallsWithApplications()
    {
        tests::PutDword(HKEY_CURRENT_USER, own.Preferences(), L"DefaultFlag", 1);
        tests::MakeKey(HKEY_CURRENT_USER, other.Preferences());
        for (const std::wstring& key : {own.keyPath, other.keyPath}) {
            tests::PutText(HKEY_LOCAL_MACHINE, key, L"Desc", L"Download");
            tests::PutText(HKEY_LOCAL_MACHINE, key, L"Icon", L"a.ico");
            tests::MakeKey(HKEY_LOCAL_MACHINE, key + L"\\Preferences");
            for (const wchar_t* const mediaType : {L"Image", L"Audio", L"Video"}) {
                tests::PutText(HKEY_LOCAL_MACHINE, key + L"\\File Formats", mediaType, L"jpg tif");
            }
        }
        tests::MakeKey(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Corvane\\Nobody's\\Key");
        tests::MakeKey(HKEY_LOCAL_MACHINE, tests::kRunKey);
    }

    tests::RegistrySandbox registry;
    tests::TempFolder files;
    tests::SampleApplication own = tests::RegisterOwnSample(files.Path(), L"Own");
    tests::SampleApplication other = tests::RegisterSample(files.Path(), L"Second");
};

TEST_F(CallsWithApplications, OfLoadingEqualItsFloor)
{
    CKestraBootInformationHandler handler;
    const CallCounts floor = CallsOf([] {
        EXPECT_EQ(bench::LoadApplications(), 2);
    });
    EXPECT_EQ(CallsOf([&] {
                  handler.LoadInformation();
              }),
              floor);
}

TEST_F(CallsWithApplications, FromTheCardToTheApplicationEqualTheirFloor)
{
    const tests::TempFolder contents;
    contents.AddFile("DCIM/100TEST/IMG_0001.JPG");
    CardInDrive card(contents);
    tests::SpawnRecorder starts;
    starts.OnSpawn([&](const tests::SpawnCall&) {
        starts.Answer(reinterpret_cast<std::intptr_t>(::CreateEventW(nullptr, FALSE, FALSE, nullptr)));
    });
    InitializeDispatch();
    RegisterDeviceConnectCallback([](std::wstring& kind, std::wstring& deviceId) {
        CKestraBootCommandHandler handler;
        handler.LaunchDefaultKestra(kind, deviceId);
    });
    DriveWatch watch;
    VolumeScan scan(watch);
    scan.Scan();
    card.Insert();

    const CallCounts library = CallsOf([&] {
        scan.Scan();
    });
    EXPECT_EQ(starts.Calls().size(), 1U);
    const bench::Road road = {L"E:", own.keyPath, own.proxyPath, own.commandPath};
    CallCounts floor = WithTheTrackersOwn(CallsOf([&] {
        bench::TravelRoad(road);
    }));
    floor["SetErrorMode"] += 2; // reading the drive's file system opens a second scope
    EXPECT_EQ(library, floor);
    RegisterDeviceConnectCallback(nullptr);
}

} // namespace
} // namespace kestraboot
