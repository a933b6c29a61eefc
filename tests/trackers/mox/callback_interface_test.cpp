#include "trackers/mox/callback_interface.h"

#include "foundation/text.h"
#include "tests/support/import_patch.h"
#include "tests/support/signal.h"
#include "tests/trackers/mox/device_reports.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <atomic>
#include <map>
#include <new>
#include <string>
#include <thread>

namespace kestraboot
{
namespace
{

using tests::DeviceReport;
using tests::DeviceReports;

mox::DeviceRecord Record(std::uint32_t kind, std::uint32_t mobileReady = 0,
                         std::wstring_view id = L"device")
{
    mox::DeviceRecord record = {};
    record.size = 3656;
    record.deviceKind = kind;
    record.mobileReady = mobileReady;
    CopyToField(record.deviceId, id);
    return record;
}

class Callback : public testing::Test
{
protected:
    Callback() { callback->AddReference(); }
    ~Callback() override { EXPECT_EQ(callback->Release(), 0U) << "a reference is left"; }

    mox::Status Notify(const mox::DeviceRecord& record) { return callback->Notify(0, &record); }

    DeviceReports reports;
    mox::ICallbackInterface* callback = new CMOXCallbackInterface;
};

TEST(CallbackEnd, DeletesTheLockOnce)
{
    const FAKE_IMPORT(DeleteCriticalSection) deleted([&](CRITICAL_SECTION* section) {
        deleted.CallOriginal(section);
    });
    mox::ICallbackInterface* const callback = new CMOXCallbackInterface;
    callback->AddReference();
    callback->AddReference();
    EXPECT_EQ(callback->Release(), 1U);
    EXPECT_EQ(deleted.Calls(), 0);
    EXPECT_EQ(callback->Release(), 0U);
    EXPECT_EQ(deleted.Calls(), 1);
}

TEST_F(Callback, ReportsTheWordOfEachKind)
{
    const std::pair<std::uint32_t, const wchar_t*> kinds[] = {
        {0, L"unknown"}, {1, L"camera"},   {3, L"scanner"},         {4, L"video"},
        {5, L"audio"},   {6, L"volume"},   {7, L"archive"},         {8, L"unknown"},
        {9, L"unknown"}, {10, L"unknown"}, {0xFFFFFFFF, L"unknown"}};
    std::vector<DeviceReport> expected;
    for (const auto& [kind, word] : kinds) {
        for (const std::uint32_t flag : {0U, 1U, 2U}) {
            EXPECT_EQ(Notify(Record(kind, flag)), mox::kSuccess);
            expected.emplace_back(word, L"device");
        }
    }
    EXPECT_EQ(reports.All(), expected);
}

TEST_F(Callback, ReportsAMobileDeviceOnlyWhenItIsReady)
{
    for (const std::uint32_t notReady : {0U, 2U, 0xFFFFFFFFU}) {
        EXPECT_EQ(Notify(Record(2, notReady)), mox::kSuccess);
    }
    EXPECT_TRUE(reports.All().empty());
    EXPECT_EQ(Notify(Record(2, 1, L"phone")), mox::kSuccess);
    EXPECT_EQ(reports.All(), (std::vector<DeviceReport>{{L"mobile", L"phone"}}));
}

TEST_F(Callback, ReportsADeviceAgainEachTimeItIsReported)
{
    for (int told = 0; told < 3; ++told) {
        EXPECT_EQ(Notify(Record(1, 0, L"camera")), mox::kSuccess);
    }
    EXPECT_EQ(reports.All(), std::vector<DeviceReport>(3, {L"camera", L"camera"}));
}

TEST_F(Callback, IgnoresOtherSizesAndOtherEvents)
{
    for (const std::uint32_t size : {0U, 3652U, 3655U, 3660U, 0xFFFFFFFFU}) {
        mox::DeviceRecord record = Record(1);
        record.size = size;
        EXPECT_EQ(Notify(record), mox::kSuccess) << size;
    }
    for (const std::uint32_t event : {1U, 2U, 0xFFFFFFFFU}) {
        mox::DeviceRecord record = Record(1);
        record.eventCode = event;
        EXPECT_EQ(Notify(record), mox::kSuccess) << event;
    }
    EXPECT_TRUE(reports.All().empty());
    EXPECT_EQ(callback->Notify(0, nullptr), mox::kBadArgument);
}

TEST_F(Callback, ReadsNothingElseOfTheRecord)
{
    mox::DeviceRecord record = Record(7);
    record.reserved4 = record.reserved12 = record.value3628 = record.reserved3652 = 0xFFFFFFFF;
    std::wmemset(record.text536, L'x', 260);
    std::wmemset(record.text1056, L'x', 1024);
    std::wmemset(record.text3104, L'x', 260);
    EXPECT_EQ(callback->Notify(0xFFFFFFFFFFFFFFFF, &record), mox::kSuccess);
    EXPECT_EQ(reports.All(), (std::vector<DeviceReport>{{L"archive", L"device"}}));
}

TEST_F(Callback, CutsAnIdentifierThatIsNotTerminatedAt259Characters)
{
    mox::DeviceRecord record = Record(1);
    std::wmemset(record.deviceId, L'i', 260);
    record.text536[0] = L'!';
    EXPECT_EQ(Notify(record), mox::kSuccess);
    EXPECT_EQ(Notify(Record(1, 0, std::wstring(259, L'j'))), mox::kSuccess);
    EXPECT_EQ(Notify(Record(1, 0, L"")), mox::kSuccess);
    EXPECT_EQ(reports.All(), (std::vector<DeviceReport>{{L"camera", std::wstring(259, L'i')},
                                                        {L"camera", std::wstring(259, L'j')},
                                                        {L"camera", L""}}));
}

TEST_F(Callback, AcceptsEightThreadsAtOnceLosesNothingAndKeepsTheOrderOfEach)
{
    constexpr int kThreads = 8;
    constexpr int kEach = 250;
    std::atomic<int> inside = 0;
    std::atomic<int> together = 0;
    reports.during = [&](const DeviceReport&) {
        together = std::max(together.load(), ++inside);
        std::this_thread::yield();
        --inside;
    };
    std::atomic<bool> start = false;
    std::vector<std::thread> threads;
    for (int number = 0; number < kThreads; ++number) {
        threads.emplace_back([&, number] {
            while (!start) {
            }
            for (int count = 0; count < kEach; ++count) {
                const std::wstring id = std::to_wstring(number) + L" " + std::to_wstring(count);
                Notify(Record(1, 0, id));
            }
        });
    }
    start = true;
    for (std::thread& thread : threads) {
        thread.join();
    }
    const std::vector<DeviceReport> all = reports.All();
    EXPECT_EQ(all.size(), static_cast<std::size_t>(kThreads * kEach));
    EXPECT_EQ(together, 1);
    std::map<int, int> next;
    for (const DeviceReport& report : all) {
        const std::size_t blank = report.second.find(L' ');
        const int number = std::stoi(report.second.substr(0, blank));
        EXPECT_EQ(std::stoi(report.second.substr(blank)), next[number]++) << "thread " << number;
    }
}

TEST_F(Callback, HoldsASecondNotificationBackUntilTheFirstIsDone)
{
    const tests::Signal firstIsInside;
    const tests::Signal letItGo;
    reports.during = [&](const DeviceReport& report) {
        if (report.second == L"first") {
            firstIsInside.Set();
            letItGo.Wait();
        }
    };
    std::vector<CRITICAL_SECTION*> entered; // by the first, before it waits inside
    const FAKE_IMPORT(EnterCriticalSection) enter([&](CRITICAL_SECTION* section) {
        if (!::TryEnterCriticalSection(section)) {
            EXPECT_EQ(entered.size(), 2U) << "the object's own section and that of the dispatch";
            EXPECT_EQ(section, entered[0]) << "the second report reached the dispatch";
            letItGo.Set();
            while (!::TryEnterCriticalSection(section)) {
                ::SwitchToThread();
            }
        } else if (entered.size() < 2) {
            entered.push_back(section);
        }
    });
    std::thread first([&] {
        Notify(Record(1, 0, L"first"));
    });
    firstIsInside.Wait();
    EXPECT_EQ(Notify(Record(1, 0, L"second")), mox::kSuccess);
    first.join();
    EXPECT_EQ(reports.All(), (std::vector<DeviceReport>{{L"camera", L"first"}, {L"camera", L"second"}}));
}

TEST_F(Callback, MayBeCalledFromInsideANotification)
{
    reports.during = [&](const DeviceReport& report) {
        if (report.second == L"outer") {
            EXPECT_EQ(Notify(Record(1, 0, L"inner")), mox::kSuccess);
        }
    };
    EXPECT_EQ(Notify(Record(1, 0, L"outer")), mox::kSuccess);
    EXPECT_EQ(reports.All(), (std::vector<DeviceReport>{{L"camera", L"outer"}, {L"camera", L"inner"}}));
}

TEST_F(Callback, LetsNoExceptionOutAndContinues)
{
    reports.during = [](const DeviceReport&) {
        throw 42;
    };
    EXPECT_EQ(Notify(Record(1)), mox::kSuccess);
    reports.during = nullptr;
    std::thread other([&] {
        EXPECT_EQ(Notify(Record(1)), mox::kSuccess);
    }); // fails to return if a lock is still held
    other.join();
    EXPECT_EQ(reports.All().size(), 2U);
}

TEST_F(Callback, HasNoOtherInterfaceAndLeavesTheOutputUnchanged)
{
    for (const mox::InterfaceNumber number : {0U, 1U, 8U, 9U, 13U}) {
        void* object = this;
        EXPECT_FALSE(callback->Query(number, &object)) << number;
        EXPECT_EQ(object, this) << number;
    }
    EXPECT_FALSE(callback->Query(0, nullptr));
}

TEST_F(Callback, CountsItsReferencesFromZero)
{
    EXPECT_EQ(callback->AddReference(), 2U) << "one is the test's own";
    EXPECT_EQ(callback->AddReference(), 3U);
    EXPECT_EQ(callback->Release(), 2U);
    EXPECT_EQ(callback->Release(), 1U);
}

TEST_F(Callback, LosesNoReferenceAmongThreads)
{
    std::atomic<int> ready = 0;
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&] {
            for (++ready; ready < 4;) {
            }
            for (int count = 0; count < 200000; ++count) {
                callback->AddReference();
                callback->Release();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(callback->AddReference(), 2U);
    EXPECT_EQ(callback->Release(), 1U);
}

} // namespace
} // namespace kestraboot
