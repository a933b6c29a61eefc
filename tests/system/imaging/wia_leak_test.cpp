// Thousands of look-ups of a WIA device in a real host process, and the resources of the host and of the
// service before and after.
#include "samples/simulators/wia/service_window.h"
#include "tests/support/storm_size.h"
#include "tests/system/imaging/imaging_host_process.h"
#include "tests/system/imaging/leak_check.h"
#include "tests/system/imaging/own_wia_service.h"

#include <gmock/gmock.h>

#include <functional>

namespace kestraboot::tests
{
namespace
{

using simulators::AskServiceForCount;
using simulators::ServiceObjects;

testing::AssertionResult LeaveNothingBehind(const ImagingHostProcess& host, const std::string& what,
                                            const std::function<void()>& operation)
{
    const auto serviceUse = [] {
        return std::vector<long>{AskServiceForCount(ServiceObjects::Managers),
                                 AskServiceForCount(ServiceObjects::Registrations),
                                 AskServiceForCount(ServiceObjects::Lists)};
    };
    operation(); // creates the one-time objects
    const std::vector<long> objectsBefore = serviceUse();
    const auto result = LeavesNothingBehind(host.Handle(), what, [&] {
        for (int tenth = 0; tenth < 10; ++tenth) {
            operation();
        }
    });
    // COM releases the objects of an ended host some time later.
    EXPECT_THAT(serviceUse(), testing::Pointwise(testing::Le(), objectsBefore))
        << "COM references in the service";
    return result;
}

TEST(WiaLookUps, OfConnectEventsLeaveNothingBehind)
{
    const StandInFolder& standIns = WiaStandIns();
    standIns.Write("wia_devices.txt", {"scanner S", "camera " + std::string(1000, 'c')});
    const std::wstring camera(1000, L'c');
    ImagingHostProcess host(L"imaging_host_6_0.exe");
    ASSERT_TRUE(host.WaitFor("trace <***DeviceConnect***><WiaTracker><WIA devices will be detected>."));
    const int atOnce = StormSize(10, 1'000);
    EXPECT_TRUE(LeaveNothingBehind(host, std::to_string(10 * atOnce) + " WIA connect events", [&] {
        host.Forget();
        for (int i = 0; i < atOnce; ++i) {
            ASSERT_TRUE(simulators::TellServiceToFire(camera));
        }
        ASSERT_TRUE(host.WaitForCount("event camera|" + std::string(1000, 'c'), atOnce))
            << host.Lines("event").size() << " reported, " << host.Lines("trace Could").size()
            << " not placed";
    }));
}

TEST(WiaLookUps, OfTheStillImageTrackerOnXpLeaveNothingBehind)
{
    const StandInFolder& standIns = WiaStandIns();
    standIns.Write("wia_devices.txt", {"scanner S", "camera C"});
    standIns.Write("sti_devices.txt", {});
    ImagingHostProcess host(L"imaging_host_5_1.exe");
    ASSERT_TRUE(host.WaitFor("trace <***DeviceConnect***><StiTracker><STI Devices will be detected.>"));
    standIns.Write("sti_devices.txt", {"every-second", "camera C"});
    // Each look-up enters and leaves an apartment and connects to the service again. In this, Wine's COM
    // hung about once in a thousand times.
    constexpr int kAtOnce = 10;
    const int turns = StormSize(1, 100);
    EXPECT_TRUE(LeaveNothingBehind(
        host, std::to_string(10 * turns * kAtOnce) + " WIA look-ups on Windows XP", [&] {
            for (int turn = 0; turn < turns; ++turn) {
                host.Forget();
                for (int i = 0; i < 2 * kAtOnce; ++i) {
                    ASSERT_TRUE(host.NotifyDeviceChange());
                }
                ASSERT_TRUE(host.WaitForCount("event camera|C", kAtOnce))
                    << host.Lines("event").size() << " reported, " << host.Lines("trace Could").size()
                    << " not placed";
            }
        }));
}

} // namespace
} // namespace kestraboot::tests
