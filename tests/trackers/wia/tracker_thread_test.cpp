// The thread from its start to the WM_QUIT, which only a test posts.
#include "tests/support/trace_recorder.h"
#include "tests/trackers/wia/fake_wia.h"
#include "trackers/wia/wia_tracker.h"

#include <gmock/gmock.h>

#include <vector>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;

constexpr const wchar_t* kDetected = L"<***DeviceConnect***><WiaTracker><WIA devices will be detected>.";
constexpr const wchar_t* kNotDetected =
    L"<***DeviceConnect***><WiaTracker><WIA devices will not be detected>.";

class WiaTrackerThreadTest : public testing::Test
{
protected:
    /// Runs the thread's code on the test's thread. Its loop gets WM_QUIT as the first message.
    DWORD RunUntilQuit()
    {
        ::PostQuitMessage(7);
        return WiaTrackerThread(nullptr);
    }

    FakeWiaService service;
    TraceRecorder trace;
};

TEST_F(WiaTrackerThreadTest, RegistersAndWritesALine)
{
    const FAKE_IMPORT(GetMessageW) loop([&](MSG*, HWND window, UINT first, UINT last) {
        EXPECT_NE(service.registeredCallback, nullptr) << "registered as long as the loop runs";
        EXPECT_EQ(window, nullptr);
        EXPECT_EQ(first, 0U);
        EXPECT_EQ(last, 0U);
        return FALSE;
    });
    EXPECT_EQ(WiaTrackerThread(nullptr), 0U);
    EXPECT_THAT(trace.Lines(), ElementsAre(kDetected));
    EXPECT_THAT(service.released, ElementsAre("manager", "registration", "apartment"));
}

TEST_F(WiaTrackerThreadTest, WithoutTheServiceWritesALineAndContinues)
{
    service.create = CO_E_SERVER_EXEC_FAILURE;
    EXPECT_EQ(RunUntilQuit(), 0U);
    EXPECT_THAT(trace.Lines(), ElementsAre(kNotDetected));
    EXPECT_THAT(service.released, ElementsAre("apartment"));
}

TEST_F(WiaTrackerThreadTest, WhoseRegistrationIsRefusedWritesALineAndContinues)
{
    service.registers = E_ACCESSDENIED;
    EXPECT_EQ(RunUntilQuit(), 0U);
    EXPECT_THAT(trace.Lines(), ElementsAre(kNotDetected));
    EXPECT_THAT(service.released, ElementsAre("manager", "apartment"));
}

TEST_F(WiaTrackerThreadTest, DispatchesEveryMessageAndContinuesAfterAFailedOne)
{
    std::vector<BOOL> results = {TRUE, -1, TRUE, FALSE};
    std::vector<UINT> dispatched;
    UINT number = WM_APP;
    const FAKE_IMPORT(GetMessageW) loop([&](MSG* message, HWND, UINT, UINT) {
        message->message = number++;
        const BOOL result = results.front();
        results.erase(results.begin());
        return result;
    });
    std::vector<UINT> translated;
    const FAKE_IMPORT(TranslateMessage) translates([&](const MSG* message) {
        translated.push_back(message->message);
        return FALSE;
    });
    const FAKE_IMPORT(DispatchMessageW) dispatches([&](const MSG* message) -> LRESULT {
        dispatched.push_back(message->message);
        EXPECT_EQ(translated, dispatched) << "each is translated first";
        return 0;
    });
    const FAKE_IMPORT(Sleep) pauses([&](DWORD milliseconds) {
        EXPECT_EQ(milliseconds, 50U);
    });
    EXPECT_EQ(WiaTrackerThread(nullptr), 0U);
    EXPECT_THAT(dispatched, ElementsAre(WM_APP, WM_APP + 2));
    EXPECT_EQ(translated, dispatched);
    EXPECT_EQ(pauses.Calls(), 1) << "a lasting failure must not use a whole processor";
}

} // namespace
} // namespace kestraboot::tests
