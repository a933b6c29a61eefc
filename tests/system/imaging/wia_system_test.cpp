// The shipped library in a real host process, with a WIA service in a third process. It replaces the WIA
// service of the whole prefix, so it runs in a prefix of its own.
#include "samples/simulators/wia/service_window.h"
#include "tests/support/registry_sandbox.h"
#include "tests/system/imaging/imaging_host_process.h"
#include "tests/system/imaging/own_wia_service.h"

#include <gmock/gmock.h>

namespace kestraboot::tests
{
namespace
{

using simulators::AskServiceForCount;
using simulators::TellServiceToFire;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kDetected =
    "trace <***DeviceConnect***><WiaTracker><WIA devices will be detected>.";
constexpr const char* kNotDetected =
    "trace <***DeviceConnect***><WiaTracker><WIA devices will not be detected>.";
constexpr const char* kStiDetected =
    "trace <***DeviceConnect***><StiTracker><STI Devices will be detected.>";
constexpr const wchar_t* kCamera = L"{6BDD1FC6-810F-11D0-BEC7-08002BE2092F}\\0001";

class WiaSystem : public testing::Test
{
protected:
    WiaSystem()
    {
        WiaStandIns().Write("wia_devices.txt", {});
        WiaStandIns().Write("sti_devices.txt", {});
        WiaStandIns().Write("twain_sources.txt", {"source Fine Scan"});
    }

    static void List(const std::vector<std::string>& devices)
    {
        WiaStandIns().Write("wia_devices.txt", devices);
    }

    static void GiveTwainSource(const std::wstring& internalName)
    {
        PutText(HKEY_LOCAL_MACHINE,
                L"SYSTEM\\CurrentControlSet\\Control\\Class\\" + internalName + L"\\DeviceData",
                L"TwainDS", L"Fine Scan");
    }
};

TEST_F(WiaSystem, ReportsACameraAndAScannerThatConnect)
{
    ImagingHostProcess host(L"imaging_host_6_0.exe");
    ASSERT_TRUE(host.WaitFor(kDetected));
    List({"video V", "camera {6BDD1FC6-810F-11D0-BEC7-08002BE2092F}\\0001", "scanner S-2"});
    ASSERT_TRUE(TellServiceToFire(kCamera));
    EXPECT_TRUE(host.WaitFor("event camera|{6BDD1FC6-810F-11D0-BEC7-08002BE2092F}\\0001"));
    ASSERT_TRUE(TellServiceToFire(L"S-2"));
    EXPECT_TRUE(host.WaitFor("event scanner|S-2"));
    EXPECT_THAT(host.Lines("trace <***DeviceConnect***><WiaTracker>"),
                ElementsAre(kDetected,
                            "trace <***DeviceConnect***><WiaTracker><WIA "
                            "DEVICE><C|{6BDD1FC6-810F-11D0-BEC7-08002BE2092F}\\0001>.",
                            "trace <***DeviceConnect***><WiaTracker><WIA DEVICE><S|S-2>."));
}

TEST_F(WiaSystem, WritesOneLineForADeviceOfUnknownType)
{
    ImagingHostProcess host(L"imaging_host_6_0.exe");
    ASSERT_TRUE(host.WaitFor(kDetected));
    List({"video V", "camera c-1", "scanner last"});
    for (const wchar_t* id : {L"V", L"C-1", L"gone", L""}) {
        ASSERT_TRUE(TellServiceToFire(id));
    }
    ASSERT_TRUE(TellServiceToFire(L"last"));
    EXPECT_TRUE(host.WaitFor("event scanner|last"));
    EXPECT_EQ(host.Lines("trace Could not get the device type.").size(), 4U);
    EXPECT_THAT(host.Lines("event"), ElementsAre("event scanner|last"));
}

TEST_F(WiaSystem, WritesALineWhenTheServiceRefusesAndStaysAlive)
{
    List({"refuse-registration"});
    ImagingHostProcess host(L"imaging_host_6_0.exe");
    EXPECT_TRUE(host.WaitFor(kNotDetected));
    ASSERT_TRUE(host.CatchUp());
    EXPECT_THAT(host.Lines("event"), IsEmpty());
}

TEST_F(WiaSystem, RefusesADeviceWhileTheServiceListsNone)
{
    ImagingHostProcess host(L"imaging_host_6_0.exe");
    ASSERT_TRUE(host.WaitFor(kDetected));
    List({"no-list", "camera C"});
    ASSERT_TRUE(TellServiceToFire(L"C"));
    EXPECT_TRUE(host.WaitFor("trace Could not get the device type."));
    List({"camera C"});
    ASSERT_TRUE(TellServiceToFire(L"C"));
    EXPECT_TRUE(host.WaitFor("event camera|C"));
}

TEST_F(WiaSystem, OnXpADeviceIsReportedByBothTrackersAndTwainComesFirst)
{
    GiveTwainSource(L"WIA-TEST");
    ImagingHostProcess host(L"imaging_host_5_1.exe");
    ASSERT_TRUE(host.WaitFor(kDetected));
    ASSERT_TRUE(host.WaitFor(kStiDetected));
    List({"camera WIA-TEST"});
    WiaStandIns().Write("sti_devices.txt", {"camera WIA-TEST"});
    ASSERT_TRUE(host.NotifyDeviceChange());
    EXPECT_TRUE(host.WaitFor("event camera|WIA-TEST"));
    EXPECT_THAT(host.Lines("event"), ElementsAre("event camera|\"Fine Scan\"", "event camera|WIA-TEST"));
    EXPECT_THAT(host.Lines("trace <***DeviceConnect***><StiTracker>"),
                ElementsAre(kStiDetected,
                            "trace <***DeviceConnect***><StiTracker><TWAIN DEVICE><C|\"Fine Scan\">",
                            "trace <***DeviceConnect***><StiTracker><WIA DEVICE><C|WIA-TEST>"));
    ASSERT_TRUE(TellServiceToFire(L"WIA-TEST"));
    EXPECT_TRUE(host.WaitForCount("event camera|WIA-TEST", 2));
}

TEST_F(WiaSystem, OnXpTheStillImageTrackerWritesALineForADeviceThatWiaDoesNotList)
{
    ImagingHostProcess host(L"imaging_host_5_1.exe");
    ASSERT_TRUE(host.WaitFor(kStiDetected));
    List({"camera known", "scanner S"});
    WiaStandIns().Write("sti_devices.txt", {"camera KNOWN"});
    ASSERT_TRUE(host.NotifyDeviceChange());
    EXPECT_TRUE(host.WaitFor("trace <***DeviceConnect***><StiTracker><Could not get the device type.>"));
    WiaStandIns().Write("sti_devices.txt", {"camera KNOWN", "scanner S"});
    ASSERT_TRUE(host.NotifyDeviceChange());
    EXPECT_TRUE(host.WaitFor("event scanner|S"));
    EXPECT_THAT(host.Lines("event"), ElementsAre("event scanner|S"));
}

TEST_F(WiaSystem, OnOtherSystemsThanXpTheStillImageTrackerDoesNotAskWia)
{
    GiveTwainSource(L"WIA-TEST");
    GiveTwainSource(L"WIA-LAST");
    for (const wchar_t* program : {L"imaging_host_5_0.exe", L"imaging_host_6_0.exe"}) {
        WiaStandIns().Write("sti_devices.txt", {});
        ImagingHostProcess host(program);
        ASSERT_TRUE(host.WaitFor(kStiDetected));
        List({"camera WIA-TEST", "scanner WIA-LAST"});
        WiaStandIns().Write("sti_devices.txt", {"camera WIA-TEST"});
        ASSERT_TRUE(host.NotifyDeviceChange());
        EXPECT_TRUE(host.WaitFor("event camera|\"Fine Scan\""));
        WiaStandIns().Write("sti_devices.txt", {"camera WIA-TEST", "scanner WIA-LAST"});
        ASSERT_TRUE(host.NotifyDeviceChange());
        EXPECT_TRUE(host.WaitFor("event scanner|\"Fine Scan\""));
        EXPECT_THAT(host.Lines("event"),
                    ElementsAre("event camera|\"Fine Scan\"", "event scanner|\"Fine Scan\""));
    }
}

TEST_F(WiaSystem, On2000AWiaDeviceThatConnectsIsNotReported)
{
    ImagingHostProcess vista(L"imaging_host_6_0.exe");
    ASSERT_TRUE(vista.WaitFor(kDetected));
    // Some ended hosts still count, because nothing notifies the service of the end of a process.
    const long registrations = AskServiceForCount(simulators::ServiceObjects::Registrations);
    ImagingHostProcess windows2000(L"imaging_host_5_0.exe");
    ASSERT_TRUE(windows2000.WaitFor(kStiDetected));
    List({"camera C"});
    ASSERT_TRUE(TellServiceToFire(L"C"));
    EXPECT_TRUE(vista.WaitFor("event camera|C"));
    EXPECT_EQ(AskServiceForCount(simulators::ServiceObjects::Registrations), registrations);
    ASSERT_TRUE(windows2000.CatchUp());
    EXPECT_THAT(windows2000.Lines("trace <***DeviceConnect***><WiaTracker>"), IsEmpty());
    EXPECT_THAT(windows2000.Lines("event"), IsEmpty());
}

TEST_F(WiaSystem, ServesAHostAfterAnotherOneHasExited)
{
    {
        ImagingHostProcess host(L"imaging_host_6_0.exe");
        ASSERT_TRUE(host.WaitFor(kDetected));
    }
    // A later host is served as if there had been no earlier one.
    ImagingHostProcess host(L"imaging_host_6_0.exe");
    ASSERT_TRUE(host.WaitFor(kDetected));
    List({"camera C"});
    ASSERT_TRUE(TellServiceToFire(L"C"));
    EXPECT_TRUE(host.WaitFor("event camera|C"));
}

} // namespace
} // namespace kestraboot::tests
