// The report of a new device, on each version of Windows.
#include "kestraboot/device_connect.h"
#include "tests/support/recorded_events.h"
#include "tests/support/trace_recorder.h"
#include "tests/trackers/wia/fake_wia.h"
#include "trackers/still_image/sti_report.h"

#include <gmock/gmock.h>

#include <vector>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class StiReport : public testing::Test
{
protected:
    StiReport()
        : version([this](OSVERSIONINFOW* record) -> BOOL {
              record->dwPlatformId = VER_PLATFORM_WIN32_NT;
              record->dwMajorVersion = major;
              record->dwMinorVersion = minor;
              reinterpret_cast<OSVERSIONINFOEXW*>(record)->wProductType = product;
              return TRUE;
          })
    {
    }

    void OnWindows(DWORD newMajor, DWORD newMinor, BYTE newProduct = VER_NT_WORKSTATION)
    {
        major = newMajor;
        minor = newMinor;
        product = newProduct;
    }

    static void Report(const wchar_t* internalName, std::wstring_view twainTag)
    {
        StiDeviceRecord device = {};
        CopyToField(device.internalName, internalName);
        CopyToField(device.twainTag, twainTag);
        ReportStiDevice(device);
    }

    DWORD major = 5;
    DWORD minor = 1;
    BYTE product = VER_NT_WORKSTATION;
    FAKE_IMPORT(GetVersionExW) version;
    FakeWiaService service;
    TraceRecorder trace;
    RecordedEvents events;
};

TEST_F(StiReport, OnXpReportsTheTwainSourceFirstAndThenTheWiaDevice)
{
    service.devices = {WiaDevice(L"{6BDD1FC6}\\0001", 2)};
    Report(L"{6BDD1FC6}\\0001", L"C|\"Fine Scan\"");
    EXPECT_THAT(trace.Lines(),
                ElementsAre(L"<***DeviceConnect***><StiTracker><TWAIN DEVICE><C|\"Fine Scan\">",
                            L"<***DeviceConnect***><StiTracker><WIA DEVICE><C|{6BDD1FC6}\\0001>"));
    EXPECT_THAT(events.All(),
                ElementsAre(Pair(L"camera", L"\"Fine Scan\""), Pair(L"camera", L"{6BDD1FC6}\\0001")));
    EXPECT_THAT(service.released, ElementsAre("storage", "enumerator", "manager", "apartment"));
}

TEST_F(StiReport, TracesEachEventBeforeTheHostIsCalled)
{
    static std::vector<std::size_t> linesBefore;
    static const TraceRecorder* recorder = nullptr;
    linesBefore.clear();
    recorder = &trace;
    RegisterDeviceConnectCallback([](std::wstring&, std::wstring&) {
        linesBefore.push_back(recorder->Lines().size());
    });
    service.devices = {WiaDevice(L"{6BDD1FC6}\\0001", 2)};
    Report(L"{6BDD1FC6}\\0001", L"C|\"Fine Scan\"");
    EXPECT_THAT(linesBefore, ElementsAre(1U, 2U));
}

TEST_F(StiReport, OnXpReportsAWiaScannerWithoutATwainSource)
{
    service.devices = {WiaDevice(L"{6BDD1FC6}\\0002", 1)};
    Report(L"{6BDD1FC6}\\0002", L"");
    EXPECT_THAT(trace.Lines(),
                ElementsAre(L"<***DeviceConnect***><StiTracker><WIA DEVICE><S|{6BDD1FC6}\\0002>"));
    EXPECT_THAT(events.All(), ElementsAre(Pair(L"scanner", L"{6BDD1FC6}\\0002")));
}

TEST_F(StiReport, OnXpWritesATaggedLineForADeviceThatWiaDoesNotList)
{
    service.devices = {WiaDevice(L"video", 3), WiaDevice(L"CAMERA", 2)};
    Report(L"video", L"");
    Report(L"camera", L"");
    EXPECT_THAT(trace.Lines(),
                ElementsAre(L"<***DeviceConnect***><StiTracker><Could not get the device type.>",
                            L"<***DeviceConnect***><StiTracker><Could not get the device type.>"));
    EXPECT_THAT(events.All(), IsEmpty());
}

TEST_F(StiReport, OnXpWithoutWiaReportsTheTwainSourceAlone)
{
    service.create = REGDB_E_CLASSNOTREG;
    Report(L"{6BDD1FC6}\\0001", L"S|\"Fine Scan\"");
    EXPECT_THAT(trace.Lines(),
                ElementsAre(L"<***DeviceConnect***><StiTracker><TWAIN DEVICE><S|\"Fine Scan\">"));
    EXPECT_THAT(events.All(), ElementsAre(Pair(L"scanner", L"\"Fine Scan\"")));
    EXPECT_THAT(service.released, ElementsAre("apartment"));
}

TEST_F(StiReport, OnEveryOtherWindowsDoesNotAskWia)
{
    service.devices = {WiaDevice(L"{6BDD1FC6}\\0001", 2)};
    const struct {
        DWORD major, minor;
        BYTE product;
    } others[] = {{5, 0, VER_NT_WORKSTATION},
                  {6, 0, VER_NT_WORKSTATION},
                  {5, 2, VER_NT_SERVER},
                  {6, 0, VER_NT_SERVER},
                  {6, 1, VER_NT_WORKSTATION}};
    for (const auto& other : others) {
        OnWindows(other.major, other.minor, other.product);
        Report(L"{6BDD1FC6}\\0001", L"C|\"Fine Scan\"");
    }
    EXPECT_EQ(events.All().size(), std::size(others));
    EXPECT_THAT(events.All(), testing::Each(Pair(L"camera", L"\"Fine Scan\"")));
    EXPECT_EQ(service.createdContext, 0U);
}

TEST_F(StiReport, OfATagWithoutPrefixHasNoKindAndBeginsTwoCharactersIn)
{
    OnWindows(6, 0);
    Report(L"video", L"\"Fine Scan\"");
    Report(L"video", L"\"\"");
    EXPECT_THAT(trace.Lines(),
                ElementsAre(L"<***DeviceConnect***><StiTracker><TWAIN DEVICE><\"Fine Scan\">",
                            L"<***DeviceConnect***><StiTracker><TWAIN DEVICE><\"\">"));
    EXPECT_THAT(events.All(), ElementsAre(Pair(L"", L"ine Scan\""), Pair(L"", L"")));
}

TEST_F(StiReport, OfATagAndANameThatFillTheirFieldsStaysInBounds)
{
    const std::wstring tag = L"S|\"" + std::wstring(300, L't');
    const std::wstring name(259, L'n');
    service.devices = {WiaDevice(name.c_str(), 1)};
    Report(name.c_str(), tag);
    EXPECT_THAT(events.All(), ElementsAre(Pair(L"scanner", tag.substr(2, 257)), Pair(L"scanner", name)));
    EXPECT_THAT(
        trace.Lines(),
        ElementsAre((L"<***DeviceConnect***><StiTracker><TWAIN DEVICE><" + tag).substr(0, 259),
                    (L"<***DeviceConnect***><StiTracker><WIA DEVICE><S|" + name).substr(0, 259)));
}

} // namespace
} // namespace kestraboot::tests
