// The tracker as a COM object and as a client of the service.
#include "tests/trackers/wia/fake_wia.h"
#include "trackers/wia/wia_device_tracker.h"
#include "trackers/wia/wia_identifiers.h"

#include <gmock/gmock.h>

#include <optional>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;

TEST(WiaDeviceTracker, AnswersItsTwoInterfacesAndCountsTheReference)
{
    WIADeviceTracker tracker;
    void* unknown = nullptr;
    EXPECT_EQ(tracker.QueryInterface(IID_IUnknown, &unknown), S_OK);
    void* callback = nullptr;
    EXPECT_EQ(tracker.QueryInterface(kIidUnknown, &callback), S_OK);
    constexpr IID kCallback = {
        0xAE6287B0, 0x0084, 0x11D2, {0x97, 0x3B, 0x00, 0xA0, 0xC9, 0x06, 0x8F, 0x2E}};
    EXPECT_EQ(tracker.QueryInterface(kCallback, &callback), S_OK);
    EXPECT_NE(unknown, nullptr);
    EXPECT_EQ(unknown, callback);
    EXPECT_EQ(tracker.AddRef(), 4U);
}

TEST(WiaDeviceTracker, RefusesEveryOtherInterfaceWithANullPointer)
{
    WIADeviceTracker tracker;
    for (const IID& other : {kIidWiaDevMgr, IID_IMarshal, IID_IDispatch, GUID{}}) {
        int marker = 0;
        void* object = &marker;
        EXPECT_EQ(tracker.QueryInterface(other, &object), E_NOINTERFACE);
        EXPECT_EQ(object, nullptr);
    }
    EXPECT_EQ(tracker.QueryInterface(kIidUnknown, nullptr), E_POINTER);
    EXPECT_EQ(tracker.AddRef(), 1U);
}

TEST(WiaDeviceTracker, TheLastReleaseLeavesTheObjectAlive)
{
    FakeWiaService service;
    service.devices = {WiaDevice(L"{6BDD1FC6}\\0001", 2)};
    WIADeviceTracker tracker;
    ASSERT_TRUE(tracker.Initialize());
    EXPECT_EQ(tracker.AddRef(), 1U);
    EXPECT_EQ(tracker.AddRef(), 2U);
    EXPECT_EQ(tracker.Release(), 1U);
    EXPECT_EQ(tracker.Release(), 0U);
    EXPECT_EQ(tracker.GetDeviceType(L"{6BDD1FC6}\\0001"), ImagingType::Camera);
    EXPECT_EQ(tracker.AddRef(), 1U);
}

TEST(WiaDeviceTracker, AsksForTheDeviceManagerOfTheLocalServer)
{
    FakeWiaService service;
    void* apartmentArgument = &service;
    const FAKE_IMPORT(CoInitialize) enters([&](void* reserved) {
        EXPECT_EQ(service.createdContext, 0U) << "the apartment comes first";
        apartmentArgument = reserved;
        return RPC_E_CHANGED_MODE; // the tracker ignores this result
    });
    WIADeviceTracker tracker;
    EXPECT_TRUE(tracker.Initialize());
    EXPECT_EQ(enters.Calls(), 1);
    EXPECT_EQ(apartmentArgument, nullptr);
    EXPECT_EQ(service.createdClass,
              (CLSID{0xA1F4E726, 0x8CF1, 0x11D1, {0xBF, 0x92, 0x00, 0x60, 0x08, 0x1E, 0xD8, 0x11}}));
    EXPECT_EQ(service.createdInterface,
              (IID{0x5EB2502A, 0x8CF1, 0x11D1, {0xBF, 0x92, 0x00, 0x60, 0x08, 0x1E, 0xD8, 0x11}}));
    EXPECT_EQ(service.createdContext, 4U);
    EXPECT_FALSE(service.createdAggregated);
}

TEST(WiaDeviceTracker, WithoutTheServiceNothingWorksAndNothingFaults)
{
    FakeWiaService service;
    service.create = REGDB_E_CLASSNOTREG;
    {
        WIADeviceTracker tracker;
        EXPECT_FALSE(tracker.Initialize());
        EXPECT_FALSE(tracker.RegisterForConnect());
        EXPECT_EQ(tracker.GetDeviceType(L"any"), ImagingType::Other);
        EXPECT_FALSE(tracker.ReleaseRegistration());
    }
    EXPECT_THAT(service.released, ElementsAre("apartment"));
}

TEST(WiaDeviceTracker, IsNotInitialisedByASuccessThatBringsNoDeviceManager)
{
    FakeWiaService service;
    service.create = S_FALSE;
    WIADeviceTracker tracker;
    EXPECT_FALSE(tracker.Initialize());
    EXPECT_FALSE(tracker.RegisterForConnect());
}

TEST(WiaDeviceTracker, RegistersTheConnectEventOfAllDevices)
{
    FakeWiaService service;
    WIADeviceTracker tracker;
    ASSERT_TRUE(tracker.Initialize());
    EXPECT_TRUE(tracker.RegisterForConnect());
    EXPECT_EQ(service.registeredFlags, 0);
    EXPECT_FALSE(service.registeredForOneDevice);
    EXPECT_EQ(service.registeredEvent,
              (GUID{0xA28BBADE, 0x64B6, 0x11D2, {0xA2, 0x31, 0x00, 0xC0, 0x4F, 0xA3, 0x18, 0x09}}));
    void* self = nullptr;
    EXPECT_EQ(tracker.QueryInterface(kIidWiaEventCallback, &self), S_OK);
    EXPECT_EQ(service.registeredCallback, self);
}

TEST(WiaDeviceTracker, WritesALineWhenTheRegistrationIsRefused)
{
    FakeWiaService service;
    service.registers = E_ACCESSDENIED;
    WIADeviceTracker tracker;
    ASSERT_TRUE(tracker.Initialize());
    EXPECT_FALSE(tracker.RegisterForConnect());
    EXPECT_FALSE(tracker.ReleaseRegistration());
}

TEST(WiaDeviceTracker, TreatsEverySuccessAsARegistration)
{
    FakeWiaService service;
    service.registers = S_FALSE;
    WIADeviceTracker tracker;
    ASSERT_TRUE(tracker.Initialize());
    EXPECT_TRUE(tracker.RegisterForConnect());
    EXPECT_TRUE(tracker.ReleaseRegistration());
}

TEST(WiaDeviceTracker, ReleasesItsRegistrationOnce)
{
    FakeWiaService service;
    WIADeviceTracker tracker;
    ASSERT_TRUE(tracker.Initialize() && tracker.RegisterForConnect());
    EXPECT_TRUE(tracker.ReleaseRegistration());
    EXPECT_FALSE(tracker.ReleaseRegistration());
    EXPECT_THAT(service.released, ElementsAre("registration"));
}

TEST(WiaDeviceTracker, ReleasesManagerThenRegistrationThenApartment)
{
    FakeWiaService service;
    {
        WIADeviceTracker tracker;
        ASSERT_TRUE(tracker.Initialize() && tracker.RegisterForConnect());
    }
    EXPECT_THAT(service.released, ElementsAre("manager", "registration", "apartment"));
}

} // namespace
} // namespace kestraboot::tests
