#include "kestraboot/device_connect.h"
#include "tests/support/import_patch.h"
#include "trackers/mox/mox_host.h"
#include "trackers/still_image/sti_tracker.h"
#include "trackers/volume/volume_tracker.h"
#include "trackers/wia/wia_tracker.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace kestraboot
{
namespace
{

using testing::ElementsAre;

const char* Name(LPTHREAD_START_ROUTINE entry)
{
    return entry == VolumeTrackerThread ? "volume"
           : entry == WiaTrackerThread  ? "WIA"
           : entry == StiTrackerThread  ? "STI"
           : entry == MoxHostThread     ? "plugins"
                                        : "?";
}

/// The steps of a start, in order, on this version of Windows: it makes the lock that serialises
/// reports, then a thread for each tracker. No thread really starts.
std::vector<std::string> StepsOn(DWORD major, DWORD minor, BYTE product = VER_NT_WORKSTATION,
                                 BOOL known = TRUE, HANDLE made = reinterpret_cast<HANDLE>(0x44))
{
    std::vector<std::string> steps;
    const FAKE_IMPORT(InitializeCriticalSection) lock([&](CRITICAL_SECTION* section) {
        steps.emplace_back("lock");
        lock.CallOriginal(section);
    });
    const FAKE_IMPORT(GetVersionExW) version([&](OSVERSIONINFOW* record) {
        record->dwPlatformId = VER_PLATFORM_WIN32_NT;
        record->dwMajorVersion = major;
        record->dwMinorVersion = minor;
        reinterpret_cast<OSVERSIONINFOEXW*>(record)->wProductType = product;
        return known;
    });
    const FAKE_IMPORT(CreateThread)
        create([&](SECURITY_ATTRIBUTES* security, std::size_t stack, LPTHREAD_START_ROUTINE entry,
                   void* argument, DWORD flags, DWORD*) {
            EXPECT_EQ(security, nullptr);
            EXPECT_EQ(stack, 0U);
            EXPECT_EQ(argument, nullptr);
            EXPECT_EQ(flags, 0U);
            steps.emplace_back(Name(entry));
            return made;
        });
    const FAKE_IMPORT(CloseHandle) close([](HANDLE) {
        ADD_FAILURE() << "the handle of a tracker's thread stays open";
        return TRUE;
    });
    StartDeviceConnectService();
    return steps;
}

TEST(ServiceStart, CreatesTheLockThenStartsTheTrackersOfTheWindowsVersion)
{
    EXPECT_THAT(StepsOn(5, 1), ElementsAre("lock", "volume", "WIA", "STI", "plugins"));
    EXPECT_THAT(StepsOn(5, 0), ElementsAre("lock", "volume", "STI", "plugins"));
    EXPECT_THAT(StepsOn(6, 0), ElementsAre("lock", "volume", "WIA", "STI", "plugins"));
}

TEST(ServiceStart, RunsThePluginHostAloneOnAnyOtherWindows)
{
    EXPECT_THAT(StepsOn(5, 2), ElementsAre("lock", "plugins"));
    EXPECT_THAT(StepsOn(6, 0, VER_NT_SERVER), ElementsAre("lock", "plugins"));
    EXPECT_THAT(StepsOn(6, 1), ElementsAre("lock", "plugins"));
    EXPECT_THAT(StepsOn(10, 0), ElementsAre("lock", "plugins"));
    EXPECT_THAT(StepsOn(5, 1, VER_NT_WORKSTATION, FALSE), ElementsAre("lock", "plugins"));
}

TEST(ServiceStart, ContinuesIfAThreadCannotBeCreated)
{
    EXPECT_THAT(StepsOn(5, 1, VER_NT_WORKSTATION, TRUE, nullptr),
                ElementsAre("lock", "volume", "WIA", "STI", "plugins"));
}

} // namespace
} // namespace kestraboot
