// The guarantees to a plugin about the thread of its source, and about the thread from which it reports.
#include "tests/support/import_patch.h"
#include "tests/support/process_window.h"
#include "tests/support/signal.h"
#include "tests/support/trace_recorder.h"
#include "tests/trackers/mox/device_reports.h"
#include "tests/trackers/mox/plugin_folder.h"
#include "trackers/mox/source_tracker.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <dbt.h>
#include <mutex>
#include <thread>
#include <vector>

namespace kestraboot
{
namespace
{

using tests::Behaviour;
using tests::DeviceReport;

constexpr UINT kPosted = WM_APP;
constexpr UINT kSent = WM_APP + 1;
constexpr UINT kTimerPeriod = USER_TIMER_MINIMUM;

/// A window that a plugin makes on the thread of its source. It records the test's messages that arrive.
class PluginWindow
{
public:
    PluginWindow() = default;
    PluginWindow(const PluginWindow&) = delete;
    PluginWindow& operator=(const PluginWindow&) = delete;

    /// Call it on the thread that will own the window.
    void Make()
    {
        window = ::CreateWindowExW(0, L"STATIC", L"a plugin's", WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                                   nullptr, nullptr);
        ::SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        ::SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&Procedure));
        ::SetTimer(window, 1, kTimerPeriod, nullptr);
    }
    [[nodiscard]] HWND Handle() const { return window; }

    [[nodiscard]] std::vector<UINT> Came() const
    {
        const std::lock_guard lock(mutex);
        return came;
    }

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
    {
        if (message == kPosted || message == kSent || message == WM_TIMER ||
            message == WM_DEVICECHANGE) {
            auto& self = *reinterpret_cast<PluginWindow*>(::GetWindowLongPtrW(window, GWLP_USERDATA));
            const std::lock_guard lock(self.mutex);
            self.came.push_back(message);
        }
        return ::DefWindowProcW(window, message, wParam, lParam);
    }

    HWND window = nullptr;
    mutable std::mutex mutex;
    std::vector<UINT> came;
};

/// Returns when a timer of twice that period has expired on this thread.
void OutlastATimer(UINT period)
{
    const UINT_PTR timer = ::SetTimer(nullptr, 0, 2 * period, nullptr);
    MSG message = {};
    ::GetMessageW(&message, nullptr, WM_TIMER, WM_TIMER);
    ::KillTimer(nullptr, timer);
}

class SourceThread : public testing::Test
{
protected:
    /// Starts the tracker of a plugin. Returns when the tracker waits for messages.
    void Track(Behaviour behaviour)
    {
        static constexpr mox::Identifier kIdentifier = {1, 2, 3, {4}};
        behaviour.identifier = &kIdentifier;
        const mox::PluginDescriptor plugin = folder.Add(L"alpha", std::move(behaviour));
        StartSourceTracker({L"alpha", kIdentifier, 0, plugin.modulePath});
        ASSERT_TRUE(trace.Await(L"<***DeviceConnect***><alpha><Devices will be detected.>"));
    }

    PluginWindow window;
    tests::DeviceReports reports;
    tests::TraceRecorder trace;
    tests::PluginFolder folder;
};

TEST_F(SourceThread, AnswersMessagesThatAreSentToAPluginsWindowAndLeavesPostedOnes)
{
    const tests::Signal servedOwnWindow;
    const FAKE_IMPORT(DispatchMessageW) dispatch([&](const MSG* message) {
        const LRESULT answer = dispatch.CallOriginal(message);
        if (message->message == WM_DEVICECHANGE && message->wParam == DBT_DEVNODES_CHANGED) {
            servedOwnWindow.Set();
        }
        return answer;
    });
    Behaviour behaviour;
    behaviour.onRegister = [&](mox::ICallbackInterface*) {
        window.Make();
    };
    Track(behaviour);
    ASSERT_NE(window.Handle(), nullptr);
    EXPECT_TRUE(::PostMessageW(window.Handle(), kPosted, 0, 0));
    EXPECT_TRUE(::PostMessageW(window.Handle(), WM_DEVICECHANGE, 0, 0));
    OutlastATimer(kTimerPeriod);
    DWORD_PTR answer = 0;
    for (const UINT message : {kSent, UINT{WM_DEVICECHANGE}}) {
        EXPECT_NE(::SendMessageTimeoutW(window.Handle(), message, 0, 0, SMTO_BLOCK, 20000, &answer), 0);
    }
    // An earlier posted message would arrive before this one.
    ::PostMessageW(tests::FindOwnWindow(L"MOXTrackerWindow"), WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0);
    servedOwnWindow.Wait();
    EXPECT_EQ(window.Came(), (std::vector<UINT>{kSent, WM_DEVICECHANGE}));
}

TEST_F(SourceThread, OfAReportIsTheOneOnWhichThePluginReported)
{
    mox::ICallbackInterface* callback = nullptr;
    Behaviour behaviour;
    behaviour.onRegister = [&](mox::ICallbackInterface* given) {
        callback = given;
    };
    Track(behaviour);
    DWORD reportedOn = 0;
    reports.during = [&](const DeviceReport&) {
        reportedOn = ::GetCurrentThreadId();
    };
    DWORD toldOn = 0;
    std::thread([&] {
        toldOn = ::GetCurrentThreadId();
        mox::DeviceRecord record = {};
        record.size = mox::kDeviceRecordSize;
        EXPECT_EQ(callback->Notify(0, &record), mox::kSuccess);
    }).join();
    EXPECT_NE(toldOn, 0U);
    EXPECT_EQ(reportedOn, toldOn);
}

} // namespace
} // namespace kestraboot
