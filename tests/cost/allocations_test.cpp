// The number of allocations with operator new in each piece of work. docs/speed.md shows it too.
#include "foundation/trace.h"
#include "kestraboot/command_handler.h"
#include "kestraboot/device_connect.h"
#include "service/dispatch.h"
#include "service/media_walk.h"
#include "tests/support/allocation_count.h"
#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/temp_folder.h"
#include "trackers/volume/volume_scan.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using tests::AllocationsOf;

TEST(Allocations, AreCounted)
{
    EXPECT_EQ(AllocationsOf([] {
                  const std::wstring text(100, L'x');
                  const auto number = std::make_unique<int>(1);
              }),
              2);
}

TEST(Allocations, AreNoneForAScannedFile)
{
    const tests::TempFolder volume;
    const ExtensionSet extensions({{L"jpg", L"Image"}, {L"tif", L"Image"}});
    const auto walk = [&] {
        EXPECT_FALSE(FindSupportedFile(volume.Path().c_str(), 4, extensions));
    };
    volume.AddFile("first.txt");
    const long withOneFile = AllocationsOf(walk);
    for (int i = 0; i < 200; ++i) {
        volume.AddFile("a name of some length, number " + std::to_string(i) + ".text");
    }
    EXPECT_EQ(AllocationsOf(walk), withOneFile);
}

TEST(Allocations, AreTwoForAScannedFolder)
{
    const tests::TempFolder volume;
    const ExtensionSet extensions({{L"jpg", L"Image"}, {L"tif", L"Image"}});
    const auto walk = [&] {
        EXPECT_FALSE(FindSupportedFile(volume.Path().c_str(), 4, extensions));
    };
    const long withNone = AllocationsOf(walk);
    volume.AddFolder("one");
    const long withOne = AllocationsOf(walk);
    volume.AddFolder("two");
    volume.AddFolder("three");
    EXPECT_EQ(AllocationsOf(walk) - withOne, 2 * (withOne - withNone));
    EXPECT_EQ(withOne - withNone, 2) << "the path of the folder, and the pattern that lists it";
}

TEST(Allocations, AreOneForAllSupportedExtensions)
{
    const std::vector<formatInfo_tag> formats(100, {L"jpg", L"Image"});
    EXPECT_EQ(AllocationsOf([&] {
                  const ExtensionSet extensions(formats);
              }),
              1);
}

TEST(Allocations, AreNoneForATraceLine)
{
    EXPECT_EQ(AllocationsOf([] {
                  TraceBuffer line = {};
                  FormatTraceLine(line, L"<***DeviceConnect***><%d><%ls><%ls>\n", 1, L"FILE", L"a.jpg");
              }),
              0);
}

TEST(Allocations, AreNoneForADispatch)
{
    InitializeDispatch();
    RegisterDeviceConnectCallback([](std::wstring&, std::wstring&) {});
    std::wstring kind = L"a kind that is longer than others";
    std::wstring deviceId = L"an identifier that is longer than others";
    EXPECT_EQ(AllocationsOf([&] {
                  NotifyDeviceConnect(kind, deviceId);
              }),
              0);
    RegisterDeviceConnectCallback(nullptr);
}

TEST(Allocations, AreNoneForAnIdlePoll)
{
    const FAKE_IMPORT(GetLogicalDrives) letters([] {
        return DWORD{0b10100};
    });
    const FAKE_IMPORT(GetDriveTypeW) type([](const wchar_t*) {
        return UINT{DRIVE_REMOVABLE};
    });
    const FAKE_IMPORT(GetVolumeInformationW)
        volume([](const wchar_t*, wchar_t*, DWORD, DWORD*, DWORD*, DWORD*, wchar_t*, DWORD) {
            return TRUE;
        });
    DriveWatch watch;
    VolumeScan scan(watch);
    scan.Scan();
    EXPECT_EQ(AllocationsOf([&] {
                  scan.Scan();
              }),
              0);
}

TEST(Allocations, AreNoneForALaunch)
{
    const FAKE_IMPORT(GetVersionExW) version([](OSVERSIONINFOW*) {
        return FALSE;
    });
    const tests::ImportPatch start("_wspawnlp", reinterpret_cast<void*>(+[]() -> std::intptr_t {
                                       return -1;
                                   }));
    CKestraBootCommandHandler handler;
    std::wstring path = L"C:\\Program Files\\Picture Organiser\\organiser.exe";
    std::wstring mode = L"direct";
    std::wstring type = L"volume";
    std::wstring id = L"E:";
    EXPECT_EQ(AllocationsOf([&] {
                  handler.LaunchKestra(path, mode, type, id);
              }),
              0);
}

TEST(Allocations, AreAtMost16ForALoadedApplication)
{
    const tests::RegistrySandbox sandbox;
    const tests::TempFolder folder;
    const auto add = [&](int from, int to) {
        for (int i = from; i < to; ++i) {
            const auto sample =
                tests::RegisterSample(folder.Path(), L"Product" + std::to_wstring(10'000 + i));
            tests::PutText(HKEY_LOCAL_MACHINE, sample.keyPath + L"\\File Formats", L"Image",
                           L"jpg jpeg jpe tif tiff bmp gif png psd raw crw nef avi mov mpg wmv");
            tests::MakeKey(HKEY_CURRENT_USER, sample.Preferences());
        }
    };
    CKestraBootInformationHandler handler;
    const auto load = [&] {
        handler.LoadInformation();
    };
    add(0, 65); // from here on the list has room for 128
    const long with65 = AllocationsOf(load);
    add(65, 97);
    EXPECT_LE(AllocationsOf(load) - with65, 32 * 16);
}

} // namespace
} // namespace kestraboot
