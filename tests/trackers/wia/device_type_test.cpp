// The type of a listed device, for all answers of the service.
#include "tests/trackers/wia/fake_wia.h"
#include "trackers/wia/wia_device_tracker.h"

#include <gmock/gmock.h>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;

class WiaDeviceType : public testing::Test
{
protected:
    WiaDeviceType()
        : freed([this](ULONG count, PROPVARIANT* values) {
              EXPECT_EQ(count, 2U);
              return freed.CallOriginal(count, values);
          })
    {
        EXPECT_TRUE(tracker.Initialize());
    }

    /// Looks up the type, and checks that every object is released, and each value freed before its
    /// storage.
    ImagingType LookUp(const wchar_t* id)
    {
        const int before = service.liveObjects;
        const ImagingType type = tracker.GetDeviceType(id);
        EXPECT_EQ(service.liveObjects, before);
        return type;
    }

    FakeWiaService service;
    FAKE_IMPORT(FreePropVariantArray) freed;
    WIADeviceTracker tracker;
};

TEST_F(WiaDeviceType, IsCameraOrScannerAndNothingElse)
{
    service.devices = {WiaDevice(L"default", 0), WiaDevice(L"scanner", 1), WiaDevice(L"camera", 2),
                       WiaDevice(L"video", 3), WiaDevice(L"other", 0xFFFF)};
    EXPECT_EQ(LookUp(L"default"), ImagingType::Other);
    EXPECT_EQ(LookUp(L"scanner"), ImagingType::Scanner);
    EXPECT_EQ(LookUp(L"camera"), ImagingType::Camera);
    EXPECT_EQ(LookUp(L"video"), ImagingType::Other);
    EXPECT_EQ(LookUp(L"other"), ImagingType::Other);
    EXPECT_EQ(freed.Calls(), 1 + 2 + 3 + 4 + 5);
}

TEST_F(WiaDeviceType, AsksTheLocalDevicesForIdentifierAndType)
{
    service.devices = {WiaDevice(L"camera", 2)};
    EXPECT_EQ(LookUp(L"camera"), ImagingType::Camera);
    EXPECT_EQ(service.enumeratedFlags, 0x10);
    EXPECT_EQ(service.resets, 1);
    ASSERT_EQ(service.askedProperties.size(), 2U);
    for (const PROPSPEC& asked : service.askedProperties) {
        EXPECT_EQ(asked.ulKind, static_cast<ULONG>(PRSPEC_PROPID));
    }
    EXPECT_EQ(service.askedProperties[0].propid, 2U);
    EXPECT_EQ(service.askedProperties[1].propid, 5U);
    EXPECT_THAT(service.released, ElementsAre("storage", "enumerator"));
}

TEST_F(WiaDeviceType, OfAnIdentifierInOtherLetterCaseIsNotFound)
{
    service.devices = {WiaDevice(L"{6bdd1fc6-810f}\\0001", 2)};
    EXPECT_EQ(LookUp(L"{6BDD1FC6-810F}\\0001"), ImagingType::Other);
    EXPECT_EQ(LookUp(L"{6bdd1fc6-810f}\\000"), ImagingType::Other);
    EXPECT_EQ(LookUp(L"{6bdd1fc6-810f}\\00011"), ImagingType::Other);
    EXPECT_EQ(LookUp(L"{6bdd1fc6-810f}\\0001"), ImagingType::Camera);
}

TEST_F(WiaDeviceType, OfANullIdentifierIsNotSearchedFor)
{
    service.devices = {WiaDevice(L"camera", 2)};
    EXPECT_EQ(LookUp(nullptr), ImagingType::Other);
    EXPECT_EQ(service.enumeratedFlags, -1);
}

TEST_F(WiaDeviceType, IsUnknownWhenTheServiceListsNothing)
{
    EXPECT_EQ(LookUp(L"camera"), ImagingType::Other);
    service.devices = {WiaDevice(L"camera", 2)};
    for (const HRESULT answer : {E_NOTIMPL, S_FALSE, RPC_E_DISCONNECTED}) {
        service.enumerate = answer;
        EXPECT_EQ(LookUp(L"camera"), ImagingType::Other);
    }
    EXPECT_EQ(service.nexts, 1) << "one call for the empty list; none after S_FALSE";
}

TEST_F(WiaDeviceType, IsFoundWhateverElseThanFalseASuccessIs)
{
    constexpr HRESULT kOtherSuccess = 2;
    service.devices = {WiaDevice(L"camera", 2)};
    service.devices[0].read = kOtherSuccess;
    service.enumerate = kOtherSuccess;
    EXPECT_EQ(LookUp(L"camera"), ImagingType::Camera);
}

TEST_F(WiaDeviceType, IsUnknownWhenTheListBreaksOff)
{
    service.devices = {WiaDevice(L"scanner", 1)};
    EXPECT_EQ(LookUp(L"camera"), ImagingType::Other);
    EXPECT_EQ(service.nexts, 2) << "the search stops at the end of the list";
    service.end = RPC_E_SERVERFAULT;
    EXPECT_EQ(LookUp(L"camera"), ImagingType::Other);
    EXPECT_EQ(service.nexts, 2 + 2);
    EXPECT_EQ(LookUp(L"scanner"), ImagingType::Scanner);
}

TEST_F(WiaDeviceType, IsFoundPastDevicesThatCannotBeRead)
{
    FakeWiaDevice broken = WiaDevice(L"camera", 1);
    broken.read = E_FAIL;
    FakeWiaDevice silent = WiaDevice(L"camera", 1);
    silent.read = S_FALSE;
    FakeWiaDevice nameless = WiaDevice(nullptr, 1);
    FakeWiaDevice noStorage;
    noStorage.isNull = true;
    service.devices = {broken, silent, nameless, noStorage, WiaDevice(L"camera", 2)};
    EXPECT_EQ(LookUp(L"camera"), ImagingType::Camera);
    EXPECT_EQ(freed.Calls(), 4 + 1); // the value of a device without a storage is freed too
}

TEST_F(WiaDeviceType, IsFoundPastAnIdentifierThatIsNoText)
{
    FakeWiaDevice number = WiaDevice(nullptr, 1);
    number.id.vt = VT_I8;
    number.id.hVal.QuadPart = 0x41;
    FakeWiaDevice nothing = WiaDevice(nullptr, 1);
    nothing.id.vt = VT_EMPTY;
    service.devices = {number, nothing, WiaDevice(L"camera", 2)};
    EXPECT_EQ(LookUp(L"camera"), ImagingType::Camera);
}

TEST_F(WiaDeviceType, ThatIsNoNumberIsUnknown)
{
    FakeWiaDevice device = WiaDevice(L"camera", 2);
    device.type.vt = VT_EMPTY;
    service.devices = {device};
    EXPECT_EQ(LookUp(L"camera"), ImagingType::Other);
    service.devices[0].type.vt = VT_R8;
    EXPECT_EQ(LookUp(L"camera"), ImagingType::Other);
    service.devices[0].type.vt = VT_UI4;
    EXPECT_EQ(LookUp(L"camera"), ImagingType::Camera);
}

TEST_F(WiaDeviceType, OfTwoDevicesWithOneIdentifierIsTheFirstOnes)
{
    service.devices = {WiaDevice(L"twin", 3), WiaDevice(L"twin", 2)};
    EXPECT_EQ(LookUp(L"twin"), ImagingType::Other);
}

TEST_F(WiaDeviceType, IsGivenUpOnAListWithoutEnd)
{
    service.devices = {WiaDevice(L"scanner", 1)};
    service.endless = true;
    EXPECT_EQ(LookUp(L"camera"), ImagingType::Other);
    service.devices[0].isNull = true;
    EXPECT_EQ(LookUp(L"camera"), ImagingType::Other);
}

} // namespace
} // namespace kestraboot::tests
