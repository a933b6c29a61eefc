// The thread from its start to WM_QUIT. The test sends its messages.
#include "tests/support/recorded_events.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/stand_in_folder.h"
#include "tests/support/trace_recorder.h"
#include "trackers/still_image/sti_tracker.h"

#include <gmock/gmock.h>

#include <dbt.h>
#include <functional>
#include <vector>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr const wchar_t* kDetected = L"<***DeviceConnect***><StiTracker><STI Devices will be detected.>";
constexpr const wchar_t* kNotDetected =
    L"<***DeviceConnect***><StiTracker><STI Devices will not be detected.>";

class StiTrackerThreadTest : public testing::Test
{
protected:
    StiTrackerThreadTest()
        : loop([this](MSG* message, HWND from, UINT first, UINT last) -> BOOL {
              window = from;
              EXPECT_EQ(first, static_cast<UINT>(WM_DEVICECHANGE));
              EXPECT_EQ(last, static_cast<UINT>(WM_DEVICECHANGE));
              if (next == steps.size()) {
                  LookAtWindow();
                  return 0;
              }
              *message = {};
              message->hwnd = from;
              message->message = WM_DEVICECHANGE;
              return steps[next++](*message);
          }),
          translate([this](const MSG* message) {
              translated.push_back(message->wParam);
              eventsBefore.push_back(events.All().size());
              return FALSE;
          }),
          dispatch([this](const MSG* message) -> LRESULT {
              dispatched.push_back(message->wParam);
              EXPECT_EQ(translated, dispatched) << "each is translated first";
              return 0;
          }),
          version([](OSVERSIONINFOW* record) -> BOOL {
              record->dwPlatformId = VER_PLATFORM_WIN32_NT;
              record->dwMajorVersion = 5; // Windows 2000: TWAIN only
              record->dwMinorVersion = 0;
              return TRUE;
          })
    {
        PutText(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\Class\\A\\DeviceData",
                L"TwainDS", L"Fine");
        PutText(HKEY_LOCAL_MACHINE, L"SYSTEM\\CurrentControlSet\\Control\\Class\\B\\DeviceData",
                L"TwainDS", L"Fine");
        standIns.Write("twain_sources.txt", {"source Fine"});
    }

    ~StiTrackerThreadTest() override { ::DestroyWindow(window); }

    /// A change of the devices, and a notification with any event.
    void Change(const std::vector<std::string>& devices, WPARAM event = DBT_DEVNODES_CHANGED)
    {
        steps.emplace_back([this, devices, event](MSG& message) {
            standIns.Write("sti_devices.txt", devices);
            message.wParam = event;
            return TRUE;
        });
    }

    void LookAtWindow()
    {
        wchar_t text[64] = {};
        ::GetWindowTextW(window, text, 64);
        title = text;
        ::GetClassNameW(window, text, 64);
        windowClass = text;
        style = static_cast<DWORD>(::GetWindowLongW(window, GWL_STYLE));
        isTopLevel = ::GetAncestor(window, GA_PARENT) == ::GetDesktopWindow();
        ::GetWindowRect(window, &place);
    }

    StandInFolder standIns;
    RegistrySandbox registry;
    std::vector<std::function<BOOL(MSG&)>> steps;
    std::size_t next = 0;
    std::vector<WPARAM> translated, dispatched;
    std::vector<std::size_t> eventsBefore; ///< the number of reports before each message was dispatched
    HWND window = nullptr;
    std::wstring title, windowClass;
    DWORD style = 0;
    bool isTopLevel = false;
    RECT place = {};
    FAKE_IMPORT(GetMessageW) loop;
    FAKE_IMPORT(TranslateMessage) translate;
    FAKE_IMPORT(DispatchMessageW) dispatch;
    FAKE_IMPORT(GetVersionExW) version;
    TraceRecorder trace;
    RecordedEvents events;
};

TEST_F(StiTrackerThreadTest, OpensStillImagingAndItsWindow)
{
    EXPECT_EQ(StiTrackerThread(nullptr), 0U);
    EXPECT_THAT(trace.Lines(), ElementsAre(kDetected));
    EXPECT_EQ(title, L"STITrackerWindow");
    EXPECT_STREQ(windowClass.c_str(), L"Static");
    EXPECT_EQ(style & (WS_POPUP | WS_VISIBLE), static_cast<DWORD>(WS_POPUP));
    EXPECT_TRUE(isTopLevel) << "only a top-level window gets the message about a change of devices";
    EXPECT_EQ(place.left, 20);
    EXPECT_EQ(place.top, 20);
    EXPECT_EQ(place.right, 220);
    EXPECT_EQ(place.bottom, 220);
}

TEST_F(StiTrackerThreadTest, ReportsADeviceThatIsAddedAndContinues)
{
    Change({"camera A"});
    Change({"camera A"});
    Change({"camera A", "scanner B"});
    EXPECT_EQ(StiTrackerThread(nullptr), 0U);
    EXPECT_THAT(events.All(), ElementsAre(Pair(L"camera", L"\"Fine\""), Pair(L"scanner", L"\"Fine\"")));
    EXPECT_THAT(trace.Lines(),
                ElementsAre(kDetected, L"<***DeviceConnect***><StiTracker><TWAIN DEVICE><C|\"Fine\">",
                            L"<***DeviceConnect***><StiTracker><TWAIN DEVICE><S|\"Fine\">"));
    EXPECT_EQ(dispatched.size(), 3U);
    EXPECT_THAT(eventsBefore, ElementsAre(1U, 1U, 2U))
        << "the report comes before the message is dispatched";
}

TEST_F(StiTrackerThreadTest, ChecksTheDevicesOnAChangeOfTheDeviceTreeAlone)
{
    Change({"camera A"}, DBT_DEVICEARRIVAL);
    Change({"camera A"}, DBT_DEVICEREMOVECOMPLETE);
    EXPECT_EQ(StiTrackerThread(nullptr), 0U);
    EXPECT_THAT(events.All(), IsEmpty());
    EXPECT_THAT(dispatched, ElementsAre(DBT_DEVICEARRIVAL, DBT_DEVICEREMOVECOMPLETE));
}

TEST_F(StiTrackerThreadTest, ContinuesAfterAMessageThatCouldNotBeRead)
{
    steps.emplace_back([](MSG& message) {
        message.wParam = DBT_DEVNODES_CHANGED;
        return -1;
    });
    Change({"camera A"});
    const FAKE_IMPORT(Sleep) pauses([](DWORD milliseconds) {
        EXPECT_EQ(milliseconds, 50U);
    });
    EXPECT_EQ(StiTrackerThread(nullptr), 0U);
    EXPECT_THAT(events.All(), ElementsAre(Pair(L"camera", L"\"Fine\"")));
    EXPECT_EQ(dispatched.size(), 1U);
    EXPECT_EQ(pauses.Calls(), 1) << "a lasting failure must not use a whole processor";
}

TEST_F(StiTrackerThreadTest, WithoutStillImagingWritesALineAndFindsNothing)
{
    standIns.Write("sti_devices.txt", {"refuse-create"});
    Change({"camera A"});
    EXPECT_EQ(StiTrackerThread(nullptr), 0U);
    EXPECT_THAT(trace.Lines(), ElementsAre(kNotDetected));
    EXPECT_THAT(events.All(), IsEmpty());
    EXPECT_EQ(title, L"STITrackerWindow");
}

TEST_F(StiTrackerThreadTest, WithoutMemoryForTheDevicesPresentWritesALine)
{
    const FAKE_IMPORT(HeapAlloc) noRecord([](HANDLE, DWORD, SIZE_T) -> void* {
        return nullptr;
    });
    standIns.Write("sti_devices.txt", {"camera A"});
    EXPECT_EQ(StiTrackerThread(nullptr), 0U);
    EXPECT_THAT(trace.Lines(), ElementsAre(kNotDetected));
}

TEST_F(StiTrackerThreadTest, LosesAChangeForWhichMemoryRunsOutAndContinues)
{
    bool noMemory = false;
    const FAKE_IMPORT(HeapAlloc) records([&](HANDLE heap, DWORD flags, SIZE_T size) {
        return noMemory ? nullptr : records.CallOriginal(heap, flags, size);
    });
    steps.emplace_back([&](MSG& message) {
        standIns.Write("sti_devices.txt", {"camera A"});
        noMemory = true;
        message.wParam = DBT_DEVNODES_CHANGED;
        return TRUE;
    });
    steps.emplace_back([&](MSG& message) {
        noMemory = false;
        message.wParam = DBT_DEVNODES_CHANGED;
        return TRUE;
    });
    EXPECT_EQ(StiTrackerThread(nullptr), 0U);
    EXPECT_THAT(events.All(), ElementsAre(Pair(L"camera", L"\"Fine\"")));
}

TEST_F(StiTrackerThreadTest, FreesItsListsAtTheEnd)
{
    long live = 0;
    const FAKE_IMPORT(HeapAlloc) allocates([&](HANDLE heap, DWORD flags, SIZE_T size) {
        ++live;
        return allocates.CallOriginal(heap, flags, size);
    });
    const FAKE_IMPORT(HeapFree) frees([&](HANDLE heap, DWORD flags, void* memory) {
        --live;
        return frees.CallOriginal(heap, flags, memory);
    });
    standIns.Write("sti_devices.txt", {"camera A", "camera B"});
    Change({"camera A"});
    EXPECT_EQ(StiTrackerThread(nullptr), 0U);
    EXPECT_GT(allocates.Calls(), 0);
    EXPECT_EQ(live, 0);
}

} // namespace
} // namespace kestraboot::tests
