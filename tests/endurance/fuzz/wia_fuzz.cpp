// The result of a connect event, with any answers of the WIA service about its devices.
#include "foundation/com_pointer.h"
#include "tests/endurance/fuzz/fuzz.h"
#include "tests/endurance/fuzz/wia_generator.h"
#include "tests/support/recorded_events.h"
#include "tests/support/trace_recorder.h"
#include "trackers/wia/wia_device_tracker.h"

#include <gtest/gtest.h>

namespace kestraboot::fuzz
{
namespace
{

TEST(WiaFuzz, AConnectedDeviceIsReportedAsTheModelSays)
{
    tests::FakeWiaService service;
    tests::TraceRecorder trace;
    tests::RecordedEvents events;
    ASSERT_TRUE(SUCCEEDED(::CoInitialize(nullptr))); // entering it again is cheap then
    Fuzz({.usual = 8'000}, [&](Random& random) {
        const std::wstring id = random.Chance(60) ? L"{6BDD1FC6}\\0001" : random.Text();
        const std::vector<std::wstring> ids = {id, id, random.OtherCase(id), id + L"x", random.Text()};
        const WiaWorld wia = AnyWia(random, ids);
        Become(service, wia);
        trace.Clear();
        events.Clear();
        const bool null = random.Chance(3);
        {
            WIADeviceTracker tracker;
            EXPECT_EQ(tracker.Initialize(), wia.available);
            const BSTR text = null ? nullptr : ::SysAllocString(id.c_str());
            ULONG type = 0;
            EXPECT_EQ(tracker.ImageEventCallback(nullptr, nullptr, text, nullptr, random.Bits(), nullptr,
                                                 &type, 0),
                      S_OK);
            ::SysFreeString(text);
        }
        EXPECT_EQ((Reported{events.All(), trace.Lines()}),
                  ModelOfWiaConnect(wia, null ? std::nullopt : std::optional(id)));
        EXPECT_EQ(service.liveObjects, 0);
    });
    ::CoUninitialize();
}

} // namespace
} // namespace kestraboot::fuzz
