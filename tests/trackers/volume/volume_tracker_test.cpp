// The tracker's real thread, window and messages. The test sets the drives and the clock.
#include "trackers/volume/volume_tracker.h"

#include "samples/simulators/cards/volume_message.h"
#include "tests/trackers/volume/card_scene.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

namespace kestraboot
{
namespace
{

using Events = std::vector<tests::CardScene::Event>;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using tests::kEnteringPolling;
using tests::kExitingPolling;

const std::wstring kDetected = L"<***DeviceConnect***><VolumeTracker><Volumes will be detected.>";
const std::wstring kArrived = L"<***DeviceConnect***><VolumeTracker><DEVICE ARRIVED>";
const std::wstring kRemoved = L"<***DeviceConnect***><VolumeTracker><DEVICE REMOVED>";

constexpr UINT kEndTracker = WM_APP + 1; // the test's message, which ends the loop
constexpr UINT kGiveUp = 30'000;         // milliseconds until a test fails

class VolumeTracker : public testing::Test
{
protected:
    ~VolumeTracker() override
    {
        if (thread.joinable()) {
            End();
        }
        ::CloseHandle(tick);
        ::CloseHandle(ticked);
    }

    void Start(const wchar_t* windowClass = L"DeviceDetectWin")
    {
        thread = std::thread([this] {
            result = VolumeTrackerThread(nullptr);
        });
        while ((window = ::FindWindowW(windowClass, L"CardReaderLookupWindow")) == nullptr) {
            ::SwitchToThread();
        }
        Send(WM_NULL);
    }

    /// Resets the tracker's process-wide state for the next test: not polling, only C: known.
    void End()
    {
        for (const wchar_t letter : {L'E', L'F', L'K'}) {
            scene.UnplugReader(letter);
        }
        // Answered only after a scan that has reported a card, and not yet entered the polling mode.
        Send(WM_NULL);
        if (scene.trace.Count(kEnteringPolling) > scene.trace.Count(kExitingPolling)) {
            Tick();
        }
        Send(kEndTracker);
        thread.join();
        ::UnregisterClassW(L"DeviceDetectWin", ::GetModuleHandleW(nullptr));
    }

    LRESULT Send(UINT message, WPARAM wParam = 0)
    {
        DWORD_PTR answer = 0;
        if (message == WM_DEVICECHANGE && wParam != DBT_DEVNODES_CHANGED) {
            EXPECT_TRUE(
                simulators::SendVolumeMessage(window, wParam, L'E', SMTO_BLOCK, kGiveUp, &answer));
        } else {
            EXPECT_NE(::SendMessageTimeoutW(window, message, wParam, 0, SMTO_BLOCK, kGiveUp, &answer),
                      0);
        }
        return static_cast<LRESULT>(answer);
    }

    /// Simulates half a second: the tracker scans, and waits again.
    void Tick()
    {
        ::SetEvent(tick);
        EXPECT_EQ(::WaitForSingleObject(ticked, kGiveUp), WAIT_OBJECT_0);
        Send(WM_NULL); // answered only after the scan
    }

    /// Posted messages are handled after sent ones, so the test waits for their effect.
    template <typename Condition>
    void Until(Condition reached)
    {
        using Clock = std::chrono::steady_clock; // because the tracker's clock may be stopped
        for (const auto end = Clock::now() + std::chrono::milliseconds(kGiveUp); !reached();) {
            ASSERT_LT(Clock::now(), end);
            ::SwitchToThread();
        }
    }

    void UntilReported()
    {
        Until([this] {
            return !scene.Events().empty();
        });
        EXPECT_EQ(scene.Events(), (Events{{L"volume", L"E:"}}));
    }

    tests::CardScene scene;
    HWND window = nullptr;
    std::thread thread;
    DWORD result = 99;
    std::atomic<DWORD> lastWait = 0; ///< as the tracker requested it; only Tick ends a finite one
    std::atomic<DWORD> longestPoll = 0;

    std::atomic<int> failingWaits = 0;
    std::atomic<bool> flooded = false; ///< after each message the next posted one is ready
    std::atomic<std::size_t> reportedAtCreation =
        0; ///< when the window procedure is done with WM_NCCREATE
    HANDLE tick = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    HANDLE ticked = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    FAKE_IMPORT(MsgWaitForMultipleObjectsEx)
    wait{[this](DWORD count, const HANDLE*, DWORD milliseconds, DWORD mask, DWORD flags) -> DWORD {
        EXPECT_EQ(count, 0U);
        EXPECT_EQ(flags, 0U) << "a message that the loop never takes would wake it for ever";
        if (failingWaits > 0) {
            --failingWaits;
            return WAIT_FAILED;
        }
        lastWait = milliseconds;
        longestPoll = std::max<DWORD>(longestPoll, milliseconds == INFINITE ? 0 : milliseconds);
        if (milliseconds == INFINITE || milliseconds == 0) {
            return wait.CallOriginal(0, nullptr, milliseconds, mask, flags);
        }
        if (wait.CallOriginal(1, &tick, INFINITE, mask, flags) == WAIT_OBJECT_0) {
            ::SetEvent(ticked);
            return WAIT_TIMEOUT;
        }
        return WAIT_OBJECT_0;
    }};
    FAKE_IMPORT(DefWindowProcW)
    defaultProcedure{[this](HWND handle, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
        if (message == kEndTracker) {
            ::PostQuitMessage(0);
            return 0;
        }
        if (message == WM_NCCREATE) {
            reportedAtCreation = scene.Events().size();
        }
        if (message == WM_DEVICECHANGE && flooded) {
            ::PostMessageW(handle, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0);
        }
        return defaultProcedure.CallOriginal(handle, message, wParam, lParam);
    }};
};

TEST_F(VolumeTracker, WritesThatItRunsAndCreatesAHiddenWindow)
{
    Start();
    EXPECT_EQ(scene.trace.Lines().front(), kDetected);
    EXPECT_FALSE(::IsWindowVisible(window));
    EXPECT_EQ(::GetParent(window), nullptr);
    EXPECT_EQ(::GetAncestor(window, GA_PARENT), ::GetDesktopWindow())
        << "a broadcast reaches top-level windows alone";
    EXPECT_EQ(static_cast<DWORD>(::GetWindowLongW(window, GWL_STYLE)) & WS_POPUP, WS_POPUP);
    EXPECT_EQ(::GetWindowLongW(window, GWL_EXSTYLE), 0);
    EXPECT_EQ(reinterpret_cast<HINSTANCE>(::GetWindowLongPtrW(window, GWLP_HINSTANCE)),
              ::GetModuleHandleW(nullptr));
    RECT place = {};
    ::GetWindowRect(window, &place);
    EXPECT_EQ(place.left, 20);
    EXPECT_EQ(place.top, 20);
    EXPECT_EQ(place.right, 220);
    EXPECT_EQ(place.bottom, 220);
}

TEST_F(VolumeTracker, ScansOnceBeforeItsWindowExists)
{
    std::vector<std::wstring> linesBefore;
    const FAKE_IMPORT(CreateWindowExW) create(
        [&](DWORD extended, const wchar_t* windowClass, const wchar_t* name, DWORD style, int x, int y,
            int width, int height, HWND parent, HMENU menu, HINSTANCE instance, void* data) -> HWND {
            linesBefore = scene.trace.Lines();
            return create.CallOriginal(extended, windowClass, name, style, x, y, width, height, parent,
                                       menu, instance, data);
        });
    scene.TakeCardOut(L'E');
    Start();
    EXPECT_THAT(linesBefore, ElementsAre(kDetected, kEnteringPolling));
    EXPECT_EQ(scene.trace.Lines(), linesBefore);
}

TEST_F(VolumeTracker, ScansAgainFromTheFirstMessagesOfItsWindowOn)
{
    const FAKE_IMPORT(CreateWindowExW) create(
        [&](DWORD extended, const wchar_t* windowClass, const wchar_t* name, DWORD style, int x, int y,
            int width, int height, HWND parent, HMENU menu, HINSTANCE instance, void* data) -> HWND {
            scene.InsertCard(L'E'); // after the first scan
            return create.CallOriginal(extended, windowClass, name, style, x, y, width, height, parent,
                                       menu, instance, data);
        });
    Start();
    EXPECT_EQ(reportedAtCreation, 1U);
    EXPECT_EQ(scene.Events(), (Events{{L"volume", L"E:"}}));
}

TEST_F(VolumeTracker, AnArrivalStartsAScan)
{
    Start();
    scene.trace.Clear();
    scene.InsertCard(L'E');
    Send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL);
    EXPECT_EQ(scene.Events(), (Events{{L"volume", L"E:"}}));
    EXPECT_EQ(scene.trace.Lines().front(), kArrived);
    EXPECT_EQ(scene.trace.Lines().back(), kEnteringPolling);
}

TEST_F(VolumeTracker, ARemovalIsTraced)
{
    Start();
    scene.trace.Clear();
    Send(WM_DEVICECHANGE, DBT_DEVICEREMOVECOMPLETE);
    EXPECT_THAT(scene.trace.Lines(), ElementsAre(kRemoved));
}

TEST_F(VolumeTracker, AnyMessageStartsAScan)
{
    Start();
    for (const UINT message :
         {static_cast<UINT>(WM_NULL), static_cast<UINT>(WM_SETTINGCHANGE), WM_APP + 7U}) {
        const std::size_t before = scene.Events().size();
        scene.machine.Remove(L'K');
        Send(WM_NULL);
        scene.InsertCard(L'K');
        scene.machine.Put(L'K', {DRIVE_FIXED, true, L"kodak"});
        Send(message);
        EXPECT_EQ(scene.Events().size(), before + 1) << message;
    }
    EXPECT_THAT(scene.trace.Lines(), Not(Contains(kArrived)));
}

TEST_F(VolumeTracker, ArrivalCodesInOtherMessagesAreNoArrivals)
{
    Start();
    scene.trace.Clear();
    Send(WM_NULL, DBT_DEVICEARRIVAL);
    Send(WM_NULL, DBT_DEVICEREMOVECOMPLETE);
    Send(WM_DEVICECHANGE, DBT_DEVNODES_CHANGED);
    EXPECT_THAT(scene.trace.Lines(), IsEmpty());
}

TEST_F(VolumeTracker, APostedNotificationStartsAScanToo)
{
    Start();
    scene.InsertCard(L'E');
    ::PostMessageW(window, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0);
    UntilReported();
}

TEST_F(VolumeTracker, TheAnswerIsTheDefaultProcedures)
{
    Start();
    EXPECT_EQ(Send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL),
              ::DefWindowProcW(nullptr, WM_DEVICECHANGE, 0, 0));
    EXPECT_EQ(Send(WM_GETTEXTLENGTH), 22);
}

TEST_F(VolumeTracker, WhilePollingACardIsFoundWithoutAnyMessage)
{
    scene.TakeCardOut(L'E');
    Start();
    scene.InsertCard(L'E');
    Tick();
    EXPECT_EQ(scene.Events(), (Events{{L"volume", L"E:"}}));
    Tick();
    Tick();
    EXPECT_EQ(scene.Events().size(), 1U) << "once a card";
    EXPECT_LE(longestPoll, 500U);
    EXPECT_GT(longestPoll, 0U);
}

TEST_F(VolumeTracker, WhilePollingTheWindowAnswersAtOnce)
{
    scene.TakeCardOut(L'E');
    Start(); // no tick, so the tracker waits for its half second
    for (int i = 0; i < 100; ++i) {
        Send(WM_NULL);
        Send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL);
    }
    EXPECT_EQ(scene.trace.Count(kArrived), 100);
}

TEST_F(VolumeTracker, WhilePollingMessagesThatItNeverTakesDoNotStopIt)
{
    scene.TakeCardOut(L'E');
    Start();
    ::PostMessageW(window, WM_APP + 7, 0, 0);
    ::PostThreadMessageW(::GetWindowThreadProcessId(window, nullptr), WM_DEVICECHANGE,
                         DBT_DEVNODES_CHANGED, 0);
    scene.InsertCard(L'E');
    Tick();
    EXPECT_EQ(scene.Events(), (Events{{L"volume", L"E:"}}));
}

class VolumeTrackerByTheTestsClock : public VolumeTracker
{
protected:
    ~VolumeTrackerByTheTestsClock() override { End(); } // before the clock is restored

    std::atomic<ULONGLONG> now = 10'000;
    FAKE_IMPORT(GetTickCount64)
    clock{[this]() -> ULONGLONG {
        return now;
    }};
};

TEST_F(VolumeTrackerByTheTestsClock, WhilePollingAScanThatIsDueComesBeforeMoreMessages)
{
    scene.TakeCardOut(L'E');
    Start();
    scene.InsertCard(L'E');
    now += 500;
    Send(WM_NULL); // this message ends the wait, not the time
    UntilReported();
}

TEST_F(VolumeTrackerByTheTestsClock, WhilePollingPostedMessagesWithoutEndDelayNoScan)
{
    scene.TakeCardOut(L'E');
    Start();
    flooded = true;
    ::PostMessageW(window, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0);
    scene.InsertCard(L'E');
    now += 500;
    UntilReported();
    flooded = false;
}

TEST_F(VolumeTracker, PollingEndsAndItWaitsForMessagesAgain)
{
    scene.TakeCardOut(L'E');
    Start();
    scene.UnplugReader(L'E');
    Tick();
    EXPECT_EQ(scene.trace.Lines().back(), kExitingPolling);
    Until([this] {
        return lastWait == INFINITE;
    });
    scene.InsertCard(L'F');
    Send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL);
    EXPECT_EQ(scene.Events(), (Events{{L"volume", L"F:"}}));
}

TEST_F(VolumeTracker, EndsWithZeroWhenAskedToQuit)
{
    Start();
    Send(kEndTracker);
    thread.join();
    ::UnregisterClassW(L"DeviceDetectWin", ::GetModuleHandleW(nullptr));
    EXPECT_EQ(result, 0U);
}

TEST_F(VolumeTracker, ContinuesAfterAFailedMessage)
{
    int failures = 1;
    const FAKE_IMPORT(GetMessageW) get([&](MSG* message, HWND handle, UINT first, UINT last) -> BOOL {
        EXPECT_EQ(first, static_cast<UINT>(WM_DEVICECHANGE));
        EXPECT_EQ(last, static_cast<UINT>(WM_DEVICECHANGE));
        EXPECT_EQ(handle, window);
        if (failures-- > 0) {
            *message = {window, WM_DEVICECHANGE, DBT_DEVICEARRIVAL, 0, 0, {}}; // must not be handled
            return -1;
        }
        return get.CallOriginal(message, handle, first, last);
    });
    Start();
    scene.InsertCard(L'E');
    ::PostMessageW(window, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0);
    UntilReported();
    End();
    EXPECT_EQ(scene.trace.Count(kArrived), 0);
    EXPECT_EQ(result, 0U);
}

TEST_F(VolumeTracker, AWaitThatFailsIsTriedAgainAfterAPause)
{
    Start();
    failingWaits = 3;
    Send(WM_NULL); // wakes the tracker
    Send(WM_NULL);
    while (failingWaits > 0) {
        Send(WM_NULL);
    }
    scene.InsertCard(L'E');
    Send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL);
    EXPECT_EQ(scene.Events(), (Events{{L"volume", L"E:"}}));
    EXPECT_THAT(scene.Sleeps(), ElementsAre(50, 50, 50));
}

TEST_F(VolumeTracker, WithoutAWindowItContinuesToPoll)
{
    const FAKE_IMPORT(CreateWindowExW) create([](DWORD, const wchar_t*, const wchar_t*, DWORD, int, int,
                                                 int, int, HWND, HMENU, HINSTANCE, void*) -> HWND {
        return nullptr;
    });
    std::atomic<bool> quit = false;
    const FAKE_IMPORT(GetMessageW) get([&](MSG* message, HWND handle, UINT first, UINT last) -> BOOL {
        const BOOL got = get.CallOriginal(message, handle, first, last);
        return quit ? 0 : got;
    });
    scene.TakeCardOut(L'E');
    std::atomic<DWORD> id = 0;
    thread = std::thread([&] {
        id = ::GetCurrentThreadId();
        result = VolumeTrackerThread(nullptr);
    });
    Until([this] {
        return scene.trace.Count(kEnteringPolling) == 1;
    });
    scene.InsertCard(L'E');
    ::SetEvent(tick);
    UntilReported();
    scene.UnplugReader(L'E');
    ::SetEvent(tick);
    Until([this] {
        return scene.trace.Count(kExitingPolling) == 1;
    });
    quit = true;
    ::PostThreadMessageW(id, WM_DEVICECHANGE, 0, 0);
    thread.join();
    ::UnregisterClassW(L"DeviceDetectWin", ::GetModuleHandleW(nullptr));
    EXPECT_EQ(result, 0U);
}

/// The window class cannot be registered.
class VolumeTrackerWithoutClass : public VolumeTracker
{
protected:
    FAKE_IMPORT(RegisterClassExW)
    registration{[](const WNDCLASSEXW* windowClass) -> ATOM {
        EXPECT_EQ(windowClass->cbSize, 80U);
        EXPECT_STREQ(windowClass->lpszClassName, L"DeviceDetectWin");
        EXPECT_EQ(windowClass->hInstance, ::GetModuleHandleW(nullptr));
        return 0;
    }};

    /// The window does not have the tracker's procedure, so a hook puts the quit into its thread's
    /// queue.
    void EndThroughQueue()
    {
        for (const wchar_t letter : {L'E', L'F', L'K'}) {
            scene.UnplugReader(letter);
        }
        Tick();
        EXPECT_EQ(scene.trace.Lines().back(), kExitingPolling);
        quit = true;
        ::PostMessageW(window, WM_DEVICECHANGE, 0, 0);
        thread.join();
    }

    std::atomic<bool> quit = false;
    std::atomic<int> retrieved = 0;
    FAKE_IMPORT(GetMessageW)
    get{[this](MSG* message, HWND handle, UINT first, UINT last) -> BOOL {
        const BOOL got = get.CallOriginal(message, handle, first, last);
        ++retrieved;
        return quit ? 0 : got;
    }};
};

TEST_F(VolumeTrackerWithoutClass, FallsBackToAStaticWindowAndScansOnDeviceNodeChanges)
{
    std::size_t reportedBefore = 0;
    const FAKE_IMPORT(DispatchMessageW) dispatch([&](const MSG* message) {
        if (message->wParam == DBT_DEVNODES_CHANGED) {
            reportedBefore = scene.Events().size();
        }
        return dispatch.CallOriginal(message);
    });
    Start(L"STATIC");
    scene.trace.Clear();
    scene.InsertCard(L'E');
    ::PostMessageW(window, WM_DEVICECHANGE, 0, 0); // a change of another kind
    Until([this] {
        return retrieved == 1;
    });
    Send(WM_DEVICECHANGE, DBT_DEVICEARRIVAL); // a sent message, which reaches no code of the tracker
    EXPECT_THAT(scene.Events(), IsEmpty());
    EXPECT_THAT(scene.trace.Lines(), IsEmpty());
    ::PostMessageW(window, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0);
    UntilReported();
    EXPECT_EQ(scene.trace.Count(kArrived), 0);
    EndThroughQueue();
    EXPECT_EQ(reportedBefore, 1U) << "the tracker scans first, then dispatches";
    EXPECT_EQ(result, 0U);
}

} // namespace
} // namespace kestraboot
