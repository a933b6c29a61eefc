// The handling of one connect event.
#include "kestraboot/device_connect.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/recorded_events.h"
#include "tests/support/trace_recorder.h"
#include "tests/trackers/wia/fake_wia.h"
#include "trackers/wia/wia_device_tracker.h"
#include "trackers/wia/wia_identifiers.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

constexpr GUID kDisconnected = {
    0x143E4E83, 0x6497, 0x11D2, {0xA2, 0x31, 0x00, 0xC0, 0x4F, 0xA3, 0x18, 0x09}};

class WiaConnectEvent : public testing::Test
{
protected:
    WiaConnectEvent() { EXPECT_TRUE(tracker.Initialize()); }

    HRESULT Fire(const wchar_t* id, const GUID& event = kWiaEventDeviceConnected)
    {
        const BSTR deviceId = id != nullptr ? ::SysAllocString(id) : nullptr;
        ULONG eventType = 0;
        const HRESULT result =
            tracker.ImageEventCallback(&event, nullptr, deviceId, nullptr, 0, nullptr, &eventType, 0);
        ::SysFreeString(deviceId);
        return result;
    }

    FakeWiaService service;
    TraceRecorder trace;
    RecordedEvents events;
    WIADeviceTracker tracker;
};

TEST_F(WiaConnectEvent, OfACameraIsReported)
{
    service.devices = {WiaDevice(L"{6BDD1FC6-810F-11D0-BEC7-08002BE2092F}\\0001", 2)};
    EXPECT_EQ(Fire(L"{6BDD1FC6-810F-11D0-BEC7-08002BE2092F}\\0001"), S_OK);
    EXPECT_THAT(trace.Lines(), ElementsAre(L"<***DeviceConnect***><WiaTracker><WIA "
                                           L"DEVICE><C|{6BDD1FC6-810F-11D0-BEC7-08002BE2092F}\\0001>."));
    EXPECT_THAT(events.All(),
                ElementsAre(Pair(L"camera", L"{6BDD1FC6-810F-11D0-BEC7-08002BE2092F}\\0001")));
}

TEST_F(WiaConnectEvent, OfAScannerIsReported)
{
    service.devices = {WiaDevice(L"WIA-0002", 1)};
    EXPECT_EQ(Fire(L"WIA-0002"), S_OK);
    EXPECT_THAT(trace.Lines(),
                ElementsAre(L"<***DeviceConnect***><WiaTracker><WIA DEVICE><S|WIA-0002>."));
    EXPECT_THAT(events.All(), ElementsAre(Pair(L"scanner", L"WIA-0002")));
}

TEST_F(WiaConnectEvent, OfAnotherKindOfDeviceWritesAnUntaggedLine)
{
    service.devices = {WiaDevice(L"video", 3)};
    EXPECT_EQ(Fire(L"video"), S_OK);
    EXPECT_EQ(Fire(L"gone"), S_OK);
    EXPECT_EQ(Fire(L"VIDEO"), S_OK);
    EXPECT_EQ(Fire(nullptr), S_OK);
    EXPECT_EQ(Fire(L""), S_OK);
    EXPECT_EQ(trace.Count(L"Could not get the device type."), 5);
    EXPECT_EQ(trace.Lines().size(), 5U);
    EXPECT_THAT(events.All(), IsEmpty());
}

TEST_F(WiaConnectEvent, WithoutAnIdentifierIsNotThatOfANamelessDevice)
{
    service.devices = {WiaDevice(L"", 2)};
    EXPECT_EQ(Fire(nullptr), S_OK);
    EXPECT_THAT(events.All(), IsEmpty());
    EXPECT_EQ(Fire(L""), S_OK);
    EXPECT_THAT(events.All(), ElementsAre(Pair(L"camera", L"")));
}

TEST_F(WiaConnectEvent, IsTracedBeforeTheHostIsCalled)
{
    static std::size_t linesBefore = 0;
    static const TraceRecorder* recorder = nullptr;
    recorder = &trace;
    RegisterDeviceConnectCallback([](std::wstring&, std::wstring&) {
        linesBefore = recorder->Lines().size();
    });
    service.devices = {WiaDevice(L"camera", 2)};
    EXPECT_EQ(Fire(L"camera"), S_OK);
    EXPECT_EQ(linesBefore, 1U);
}

TEST_F(WiaConnectEvent, IsReportedWhicheverEventItIs)
{
    service.devices = {WiaDevice(L"camera", 2)};
    EXPECT_EQ(Fire(L"camera", kDisconnected), S_OK);
    EXPECT_EQ(Fire(L"camera", GUID{}), S_OK);
    EXPECT_EQ(events.All().size(), 2U);
}

TEST_F(WiaConnectEvent, WithALongIdentifierIsReportedWhole)
{
    const std::wstring id(400, L'x');
    service.devices = {WiaDevice(id.c_str(), 2)};
    EXPECT_EQ(Fire(id.c_str()), S_OK);
    EXPECT_THAT(events.All(), ElementsAre(Pair(L"camera", id)));
    ASSERT_EQ(trace.Lines().size(), 1U);
    EXPECT_EQ(trace.Lines()[0],
              (L"<***DeviceConnect***><WiaTracker><WIA DEVICE><C|" + id).substr(0, 259));
}

TEST_F(WiaConnectEvent, WithoutMemoryForItsTextReturnsOutOfMemory)
{
    const std::wstring id(100, L'x');
    service.devices = {WiaDevice(id.c_str(), 2)};
    const BSTR deviceId = ::SysAllocString(id.c_str());
    HRESULT result = S_OK;
    {
        const AllocationFailure noMemory(0);
        result = tracker.ImageEventCallback(&kWiaEventDeviceConnected, nullptr, deviceId, nullptr, 0,
                                            nullptr, nullptr, 0);
    }
    ::SysFreeString(deviceId);
    EXPECT_EQ(result, E_OUTOFMEMORY);
    EXPECT_THAT(trace.Lines(), IsEmpty());
    EXPECT_THAT(events.All(), IsEmpty());
    EXPECT_EQ(Fire(id.c_str()), S_OK) << "the tracker continues";
    EXPECT_EQ(events.All().size(), 1U);
}

TEST_F(WiaConnectEvent, ReturnsSuccessWhenTheHostThrows)
{
    RegisterDeviceConnectCallback([](std::wstring&, std::wstring&) {
        throw std::runtime_error("an exception of the host");
    });
    service.devices = {WiaDevice(L"camera", 2)};
    EXPECT_EQ(Fire(L"camera"), S_OK);
}

} // namespace
} // namespace kestraboot::tests
