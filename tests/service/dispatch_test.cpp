#include "kestraboot/device_connect.h"
#include "service/dispatch.h"
#include "tests/support/import_patch.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <atomic>
#include <exception>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace kestraboot
{
namespace
{

using Event = std::pair<std::wstring, std::wstring>;

std::vector<Event> events;

void Keep(std::wstring& kind, std::wstring& deviceId)
{
    events.emplace_back(kind, deviceId);
}

void Notify(std::wstring kind, std::wstring deviceId)
{
    NotifyDeviceConnect(kind, deviceId);
}

class Dispatch : public testing::Test
{
protected:
    void SetUp() override
    {
        static const bool initialized = (InitializeDispatch(), true);
        static_cast<void>(initialized);
        events.clear();
        RegisterDeviceConnectCallback(nullptr);
    }
    void TearDown() override { RegisterDeviceConnectCallback(nullptr); }
};

TEST_F(Dispatch, TheCallbackGetsBothWords)
{
    RegisterDeviceConnectCallback(Keep);
    Notify(L"volume", L"E:");
    EXPECT_EQ(events, (std::vector<Event>{{L"volume", L"E:"}}));
}

TEST_F(Dispatch, TheCallbackGetsTheTrackersOwnStrings)
{
    static std::wstring* gotKind = nullptr;
    static std::wstring* gotId = nullptr;
    RegisterDeviceConnectCallback([](std::wstring& kind, std::wstring& deviceId) {
        gotKind = &kind;
        gotId = &deviceId;
    });
    std::wstring kind = L"camera";
    std::wstring deviceId = L"{1}";
    NotifyDeviceConnect(kind, deviceId);
    EXPECT_EQ(gotKind, &kind);
    EXPECT_EQ(gotId, &deviceId);
}

TEST_F(Dispatch, ReportsWithoutACallbackAreLost)
{
    Notify(L"volume", L"E:");
    RegisterDeviceConnectCallback(Keep);
    Notify(L"volume", L"F:");
    EXPECT_EQ(events, (std::vector<Event>{{L"volume", L"F:"}}));
}

TEST_F(Dispatch, OnlyTheLatestCallbackCounts)
{
    RegisterDeviceConnectCallback([](std::wstring&, std::wstring&) {
        FAIL() << "the previous callback was called";
    });
    RegisterDeviceConnectCallback(Keep);
    Notify(L"volume", L"E:");
    EXPECT_EQ(events.size(), 1U);
}

TEST_F(Dispatch, AReportThatHadToWaitGoesToTheCallbackOfItsTurn)
{
    RegisterDeviceConnectCallback([](std::wstring&, std::wstring&) {
        FAIL() << "called although it was replaced while the report waited";
    });
    const FAKE_IMPORT(EnterCriticalSection) turn([&](CRITICAL_SECTION* section) {
        RegisterDeviceConnectCallback(Keep);
        turn.CallOriginal(section);
    });
    Notify(L"volume", L"E:");
    EXPECT_EQ(events, (std::vector<Event>{{L"volume", L"E:"}}));
}

TEST_F(Dispatch, NullUnregisters)
{
    RegisterDeviceConnectCallback(Keep);
    RegisterDeviceConnectCallback(nullptr);
    Notify(L"volume", L"E:");
    EXPECT_TRUE(events.empty());
}

TEST_F(Dispatch, ACallbackThatThrowsDoesNotStopLaterReports)
{
    RegisterDeviceConnectCallback([](std::wstring&, std::wstring&) {
        throw std::runtime_error("host");
    });
    Notify(L"volume", L"E:");
    RegisterDeviceConnectCallback([](std::wstring&, std::wstring&) {
        throw 7;
    });
    Notify(L"volume", L"E:");
    EXPECT_EQ(std::uncaught_exceptions(), 0);

    // The report comes from another thread, because a lock that is still held would block it forever.
    RegisterDeviceConnectCallback(Keep);
    std::thread([] {
        Notify(L"volume", L"F:");
    }).join();
    EXPECT_EQ(events, (std::vector<Event>{{L"volume", L"F:"}}));
}

TEST_F(Dispatch, ACallbackMayRegisterAnotherOne)
{
    RegisterDeviceConnectCallback([](std::wstring& kind, std::wstring& deviceId) {
        Keep(kind, deviceId);
        RegisterDeviceConnectCallback([](std::wstring&, std::wstring&) {
            events.emplace_back(L"second", L"");
        });
    });
    Notify(L"volume", L"E:");
    Notify(L"volume", L"E:");
    EXPECT_EQ(events, (std::vector<Event>{{L"volume", L"E:"}, {L"second", L""}}));
}

TEST_F(Dispatch, ACallbackMayUnregisterItself)
{
    RegisterDeviceConnectCallback([](std::wstring& kind, std::wstring& deviceId) {
        Keep(kind, deviceId);
        RegisterDeviceConnectCallback(nullptr);
    });
    Notify(L"volume", L"E:");
    Notify(L"volume", L"F:");
    EXPECT_EQ(events.size(), 1U);
}

TEST_F(Dispatch, ASlowCallbackHoldsUpTheNextReport)
{
    static HANDLE entered = nullptr;
    static HANDLE goOn = nullptr;
    entered = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    goOn = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    const HANDLE atTheLock = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    std::atomic<DWORD> nextThread = 0;
    bool heldUp = false;
    const FAKE_IMPORT(EnterCriticalSection) enter([&](CRITICAL_SECTION* lock) {
        if (::GetCurrentThreadId() != nextThread) {
            enter.CallOriginal(lock);
            return;
        }
        heldUp = !::TryEnterCriticalSection(lock);
        ::SetEvent(atTheLock);
        if (heldUp) {
            enter.CallOriginal(lock);
        }
    });
    RegisterDeviceConnectCallback([](std::wstring& kind, std::wstring& deviceId) {
        if (deviceId == L"slow") {
            ::SetEvent(entered);
            ::WaitForSingleObject(goOn, 60'000);
        }
        Keep(kind, deviceId);
    });
    std::thread slow([] {
        Notify(L"volume", L"slow");
    });
    ASSERT_EQ(::WaitForSingleObject(entered, 60'000), WAIT_OBJECT_0);
    std::thread next([&] {
        nextThread = ::GetCurrentThreadId();
        Notify(L"volume", L"next");
        ::SetEvent(atTheLock); // reached if no lock holds it up
    });
    EXPECT_EQ(::WaitForSingleObject(atTheLock, 60'000), WAIT_OBJECT_0);
    EXPECT_TRUE(heldUp) << "the next report did not wait";
    ::SetEvent(goOn);
    slow.join();
    next.join();
    EXPECT_EQ(events, (std::vector<Event>{{L"volume", L"slow"}, {L"volume", L"next"}}));
    ::CloseHandle(entered);
    ::CloseHandle(goOn);
    ::CloseHandle(atTheLock);
}

TEST_F(Dispatch, ManyThreadsAreServedOneAtATimeAndNoReportIsLost)
{
    constexpr int kThreads = 8;
    constexpr int kReports = 2000;
    static std::atomic<int> inside = 0;
    static std::atomic<int> overlaps = 0;
    static std::vector<int> perThread;
    static std::atomic<int> outOfOrder = 0;
    perThread.assign(kThreads, 0);
    RegisterDeviceConnectCallback([](std::wstring& kind, std::wstring& deviceId) {
        if (inside.fetch_add(1) != 0) {
            ++overlaps;
        }
        int& last = perThread[static_cast<std::size_t>(std::stoi(kind))];
        if (std::stoi(deviceId) != ++last) {
            ++outOfOrder;
        }
        inside.fetch_sub(1);
    });
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([thread] {
            for (int report = 1; report <= kReports; ++report) {
                Notify(std::to_wstring(thread), std::to_wstring(report));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(overlaps, 0);
    EXPECT_EQ(outOfOrder, 0);
    EXPECT_EQ(perThread, std::vector<int>(kThreads, kReports));
}

} // namespace
} // namespace kestraboot
