// Sixteen trackers that report at the same time, through callbacks that throw, that are replaced and
// that replace themselves.
#include "kestraboot/device_connect.h"
#include "service/dispatch.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace kestraboot
{
namespace
{

constexpr int kThreads = 16;

/// The callbacks' observations. Only the dispatch guards them.
struct Seen {
    std::vector<int> next = std::vector<int>(kThreads); ///< the number of each thread's next report
    long calls = 0;
    long outOfOrder = 0;
};
Seen seen;
std::atomic<int> inside = 0;
std::atomic<long> together = 0;

/// `deviceId` is THREAD:NUMBER.
void Take(const std::wstring& deviceId)
{
    if (inside.fetch_add(1) != 0) {
        ++together;
    }
    const std::size_t thread = std::stoul(deviceId);
    const int number = std::stoi(deviceId.substr(deviceId.find(L':') + 1));
    seen.outOfOrder += number != seen.next[thread] ? 1 : 0;
    seen.next[thread] = number + 1;
    ++seen.calls;
    inside.fetch_sub(1);
}

void Quiet(std::wstring&, std::wstring& deviceId)
{
    Take(deviceId);
}

void Throwing(std::wstring&, std::wstring& deviceId)
{
    Take(deviceId);
    if (seen.calls % 64 == 0) {
        throw std::runtime_error("an exception of the host");
    }
}

void Replacing(std::wstring& kind, std::wstring& deviceId)
{
    Take(deviceId);
    kind += L", changed by the host";
    RegisterDeviceConnectCallback(Quiet);
}

TEST(DispatchStorm, LosesNoReportRunsOneAtATimeAndKeepsEachThreadsOrder)
{
    constexpr int reports = 1'000'000 / kThreads;
    InitializeDispatch();
    seen = {};
    RegisterDeviceConnectCallback(Quiet);
    std::atomic<bool> over = false;
    std::thread replacing([&over] {
        for (int i = 0; !over; ++i) {
            const DeviceConnectCallback callbacks[] = {Quiet, Throwing, Replacing};
            RegisterDeviceConnectCallback(callbacks[i % 3]);
            std::this_thread::yield();
        }
    });
    std::vector<std::thread> trackers;
    for (int thread = 0; thread < kThreads; ++thread) {
        trackers.emplace_back([thread] {
            for (int number = 0; number < reports; ++number) {
                std::wstring kind = L"volume";
                std::wstring deviceId = std::to_wstring(thread) + L':' + std::to_wstring(number);
                NotifyDeviceConnect(kind, deviceId);
            }
        });
    }
    for (std::thread& tracker : trackers) {
        tracker.join();
    }
    over = true;
    replacing.join();
    RegisterDeviceConnectCallback(nullptr);
    EXPECT_EQ(seen.calls, long{kThreads} * reports);
    EXPECT_EQ(seen.outOfOrder, 0);
    EXPECT_EQ(together, 0);
}

} // namespace
} // namespace kestraboot
