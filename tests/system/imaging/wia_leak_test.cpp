// Thousands of look-ups of a WIA device in a real host process, and what it and the service hold before
// and after.
#include "tests/stand_ins/wia/service_window.h"
#include "tests/support/storm_size.h"
#include "tests/system/imaging/host_process.h"
#include "tests/system/imaging/own_wia_service.h"
#include "tests/system/imaging/resource_use.h"

#include <gtest/gtest.h>

#include <functional>
#include <iostream>

namespace kestraboot::tests
{
namespace
{

using stand_ins::AskServiceForCount;
using stand_ins::ServiceObjects;

// Threads that COM makes as it likes have stacks of 3 MB. What a look-up could leave is larger still
// over 10,000 of them: each handles several texts of 2 KB.
constexpr long long kBytesOfNoise = 7'000'000;

void ExpectNothingLeft(const HostProcess& host, const std::string& what,
                       const std::function<void()>& operation)
{
    operation(); // what is made once
    const auto serviceUse = [] {
        return std::vector<long>{AskServiceForCount(ServiceObjects::Managers),
                                 AskServiceForCount(ServiceObjects::Registrations),
                                 AskServiceForCount(ServiceObjects::Lists)};
    };
    const ResourceUse before = ResourceUseOf(host.Handle());
    const std::vector<long> objectsBefore = serviceUse();
    for (int tenth = 0; tenth < 10; ++tenth) {
        operation();
    }
    const ResourceUse after = ResourceUseOf(host.Handle());
    std::cout << what << ": " << before << " -> " << after << "\n";
    // COM opens and drops a few connections as it likes; one handle a look-up would be hundreds.
    EXPECT_LT(after.handles - before.handles, 10);
    EXPECT_EQ(after.windows, before.windows);
    EXPECT_EQ(after.gdiObjects, before.gdiObjects);
    EXPECT_EQ(after.userObjects, before.userObjects);
    EXPECT_LT(after.privateBytes - before.privateBytes, kBytesOfNoise);
    EXPECT_EQ(serviceUse(), objectsBefore) << "COM references in the service";
}

TEST(WiaLookUps, OfConnectEventsLeaveNothingBehind)
{
    const StandInFolder& standIns = WiaStandIns();
    standIns.Write("wia_devices.txt", {"scanner S", "camera " + std::string(1000, 'c')});
    const std::wstring camera(1000, L'c');
    HostProcess host(L"imaging_host_6_0.exe");
    ASSERT_TRUE(host.WaitFor("trace <***DeviceConnect***><WiaTracker><WIA devices will be detected>."));
    const int atOnce = StormSize(200, 1'000);
    ExpectNothingLeft(host, std::to_string(10 * atOnce) + " WIA connect events", [&] {
        host.Forget();
        for (int i = 0; i < atOnce; ++i) {
            ASSERT_TRUE(stand_ins::TellServiceToFire(camera));
        }
        ASSERT_TRUE(host.WaitForCount("event camera|" + std::string(1000, 'c'), atOnce))
            << host.Lines("event").size() << " reported, " << host.Lines("trace Could").size()
            << " not placed";
    });
}

TEST(WiaLookUps, OfTheStillImageTrackerOnXpLeaveNothingBehind)
{
    const StandInFolder& standIns = WiaStandIns();
    standIns.Write("wia_devices.txt", {"scanner S", "camera C"});
    standIns.Write("sti_devices.txt", {});
    HostProcess host(L"imaging_host_5_1.exe");
    ASSERT_TRUE(host.WaitFor("trace <***DeviceConnect***><StiTracker><STI Devices will be detected.>"));
    standIns.Write("sti_devices.txt", {"every-second", "camera C"});
    // Each enters and leaves an apartment and connects to the service anew.
    constexpr int kAtOnce = 50;
    const int turns = StormSize(1, 20);
    ExpectNothingLeft(host, std::to_string(10 * turns * kAtOnce) + " WIA look-ups on Windows XP", [&] {
        for (int turn = 0; turn < turns; ++turn) {
            host.Forget();
            for (int i = 0; i < 2 * kAtOnce; ++i) {
                ASSERT_TRUE(host.NotifyDeviceChange());
            }
            ASSERT_TRUE(host.WaitForCount("event camera|C", kAtOnce))
                << host.Lines("event").size() << " reported, " << host.Lines("trace Could").size()
                << " not placed";
        }
    });
}

} // namespace
} // namespace kestraboot::tests
