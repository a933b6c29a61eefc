// Thousands of look-ups of a TWAIN source in a real host process, and the resources of the host before
// and after.
#include "tests/support/registry_sandbox.h"
#include "tests/support/stand_in_folder.h"
#include "tests/support/storm_size.h"
#include "tests/system/imaging/imaging_host_process.h"
#include "tests/system/imaging/leak_check.h"

#include <gtest/gtest.h>

namespace kestraboot::tests
{
namespace
{

TEST(TwainLookUps, LeaveNothingBehind)
{
    const int lookUps = StormSize(500, 10'000);
    const StandInFolder standIns;
    const std::wstring home = L"SYSTEM\\CurrentControlSet\\Control\\Class\\{Kestraboot-Leak-" +
                              std::to_wstring(::GetCurrentProcessId()) + L"}";
    PutText(HKEY_LOCAL_MACHINE, home + L"\\1\\DeviceData", L"TwainDS", L"Fine Scan");
    standIns.Write("twain_sources.txt", {"source Other", "source Fine Scan"});
    ImagingHostProcess host(L"imaging_host_6_0.exe");
    ASSERT_TRUE(host.WaitFor("trace <***DeviceConnect***><StiTracker><STI Devices will be detected.>"));
    // Every second look-up finds the device, so that it arrives and leaves all the time.
    standIns.Write("sti_devices.txt",
                   {"every-second",
                    "scanner {Kestraboot-Leak-" + std::to_string(::GetCurrentProcessId()) + "}\\1"});
    const auto lookUp = [&](int times) {
        constexpr int kAtOnce = 500; // a message queue is limited
        for (int done = 0; done < times; done += kAtOnce) {
            host.Forget();
            for (int i = 0; i < 2 * kAtOnce; ++i) {
                ASSERT_TRUE(host.NotifyDeviceChange());
            }
            ASSERT_TRUE(host.WaitForCount("event scanner|\"Fine Scan\"", kAtOnce));
        }
    };
    EXPECT_TRUE(LeavesNothingBehind(host.Handle(), std::to_string(lookUps) + " TWAIN look-ups", [&] {
        lookUp(lookUps);
    }));
    ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, home.c_str());
}

} // namespace
} // namespace kestraboot::tests
