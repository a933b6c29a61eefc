// The shipped library in a real host process, with a replaced still imaging and TWAIN source manager.
#include "tests/support/registry_sandbox.h"
#include "tests/support/stand_in_folder.h"
#include "tests/system/imaging/imaging_host_process.h"

#include <gmock/gmock.h>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kDetected =
    "trace <***DeviceConnect***><StiTracker><STI Devices will be detected.>";
constexpr const char* kNotDetected =
    "trace <***DeviceConnect***><StiTracker><STI Devices will not be detected.>";

const std::wstring kClassKey = L"SYSTEM\\CurrentControlSet\\Control\\Class\\";

/// Device names of this process's own, because all processes share the registry here.
class StillImageSystem : public testing::Test
{
protected:
    StillImageSystem()
    {
        standIns.Write("twain_sources.txt", {"source Fine Scan", "source WIA-Bridge", "source Gerät"});
    }

    ~StillImageSystem() override { ::RegDeleteTreeW(HKEY_LOCAL_MACHINE, (kClassKey + home).c_str()); }

    /// The internal name of a device with that TWAIN source, or with none.
    std::string Device(const char* name, const wchar_t* twainSource = nullptr) const
    {
        const std::wstring whole =
            home + L"\\" + std::wstring(name, name + std::char_traits<char>::length(name));
        if (twainSource != nullptr) {
            PutText(HKEY_LOCAL_MACHINE, kClassKey + whole + L"\\DeviceData", L"TwainDS", twainSource);
        }
        return std::string(whole.begin(), whole.end());
    }

    void Plug(const std::vector<std::string>& lines) const { standIns.Write("sti_devices.txt", lines); }

    /// Waits until still imaging was queried since its log was started. Another process writes the log.
    [[nodiscard]] bool AwaitLook() const
    {
        for (const ULONGLONG end = ::GetTickCount64() + 30'000; ::GetTickCount64() < end; ::Sleep(5)) {
            if (!standIns.Log("sti_calls.txt").empty()) {
                return true;
            }
        }
        return false;
    }

    StandInFolder standIns;
    std::wstring home = L"{Kestraboot-Test-" + std::to_wstring(::GetCurrentProcessId()) + L"}";
};

TEST_F(StillImageSystem, ReportsATwainScannerThatIsPluggedIn)
{
    const std::string scanner = "scanner " + Device("0001", L"Fine Scan");
    ImagingHostProcess host(L"imaging_host_6_0.exe");
    ASSERT_TRUE(host.WaitFor(kDetected));
    Plug({scanner});
    ASSERT_TRUE(host.NotifyDeviceChange());
    EXPECT_TRUE(host.WaitFor("event scanner|\"Fine Scan\""));
    EXPECT_THAT(host.Lines("trace <***DeviceConnect***><StiTracker>"),
                ElementsAre(kDetected,
                            "trace <***DeviceConnect***><StiTracker><TWAIN DEVICE><S|\"Fine Scan\">"));
}

TEST_F(StillImageSystem, ReportsOneOfTwoDevicesOfAChangeAndNoneThatWasThere)
{
    const std::string old = "camera " + Device("0000", L"Fine Scan");
    const std::string first = "camera " + Device("0001", L"Fine Scan");
    const std::string second = "scanner " + Device("0002", L"Fine Scan");
    const std::string last = "scanner " + Device("0003", L"Ger\u00E4t");
    Plug({old});
    ImagingHostProcess host(L"imaging_host_6_0.exe");
    ASSERT_TRUE(host.WaitFor(kDetected));
    ASSERT_TRUE(host.NotifyDeviceChange());
    Plug({old, first, second});
    ASSERT_TRUE(host.NotifyDeviceChange());
    ASSERT_TRUE(host.NotifyDeviceChange());
    EXPECT_TRUE(host.WaitFor("event camera|\"Fine Scan\""));
    Plug({old, first, second, last});
    ASSERT_TRUE(host.NotifyDeviceChange());
    EXPECT_TRUE(host.WaitFor("event scanner|\"Ger\u00E4t\""));
    EXPECT_THAT(host.Lines("event"),
                ElementsAre("event camera|\"Fine Scan\"", "event scanner|\"Ger\u00E4t\""));
}

TEST_F(StillImageSystem, ReportsNoSourceThatIsNotListedOrComesFromWia)
{
    const std::string bridge = "camera " + Device("0001", L"WIA-Bridge");
    const std::string missing = "camera " + Device("0002", L"Not Installed");
    const std::string plain = "camera " + Device("0003");
    const std::string good = "camera " + Device("0004", L"FINE SCAN");
    ImagingHostProcess host(L"imaging_host_6_0.exe");
    ASSERT_TRUE(host.WaitFor(kDetected));
    std::vector<std::string> plugged;
    for (const std::string& device : {bridge, missing, plain, good}) {
        plugged.push_back(device);
        standIns.StartLog("sti_calls.txt");
        Plug(plugged);
        ASSERT_TRUE(host.NotifyDeviceChange());
        ASSERT_TRUE(AwaitLook()); // the tracker handles each change separately
    }
    EXPECT_TRUE(host.WaitFor("event camera|\"FINE SCAN\""));
    EXPECT_THAT(host.Lines("event"), ElementsAre("event camera|\"FINE SCAN\""));
}

TEST_F(StillImageSystem, ReportsTheFirstDeviceAfterAListThatFailed)
{
    const std::string scanner = "scanner " + Device("0001", L"Fine Scan");
    Plug({scanner});
    ImagingHostProcess host(L"imaging_host_6_0.exe");
    ASSERT_TRUE(host.WaitFor(kDetected));
    standIns.StartLog("sti_calls.txt");
    Plug({"fail"});
    ASSERT_TRUE(host.NotifyDeviceChange());
    ASSERT_TRUE(AwaitLook());
    Plug({scanner});
    ASSERT_TRUE(host.NotifyDeviceChange());
    EXPECT_TRUE(host.WaitFor("event scanner|\"Fine Scan\""));
}

TEST_F(StillImageSystem, WithoutStillImagingWritesItsLineAndReportsNothing)
{
    Plug({"refuse-create"});
    ImagingHostProcess host(L"imaging_host_6_0.exe");
    EXPECT_TRUE(host.WaitFor(kNotDetected));
    Plug({"scanner " + Device("0001", L"Fine Scan")});
    EXPECT_TRUE(host.ServeDeviceChange());
    EXPECT_THAT(host.Lines("event"), IsEmpty());
}

struct OfWindows {
    const wchar_t* program;
    int threads; ///< of volume, WIA, still image and device plugins
    bool wia;
    bool stillImage;
};

class WindowsVersions : public StillImageSystem, public testing::WithParamInterface<OfWindows>
{
};

// Without a WIA service of ours: the threads that start, and the use of Wine's own service.
TEST_P(WindowsVersions, DecideWhichTrackersStart)
{
    const OfWindows& expected = GetParam();
    const std::string scanner = "scanner " + Device("0001", L"Fine Scan");
    ImagingHostProcess host(expected.program);
    if (expected.stillImage) {
        EXPECT_TRUE(host.WaitFor(kDetected));
        Plug({scanner});
        EXPECT_TRUE(host.NotifyDeviceChange());
        EXPECT_TRUE(host.WaitFor("event scanner|\"Fine Scan\""));
    }
    const std::string wia = "trace <***DeviceConnect***><WiaTracker><WIA devices will not be detected>.";
    if (expected.wia) {
        EXPECT_TRUE(host.WaitFor(wia));
    }
    // A tracker without a thread cannot report, so no wait is needed.
    EXPECT_EQ(host.Lines("threads").front(), "threads " + std::to_string(expected.threads));
    ASSERT_TRUE(host.CatchUp());
    EXPECT_EQ(host.HasTrackerWindow(), expected.stillImage);
    EXPECT_EQ(host.Lines("trace <***DeviceConnect***><StiTracker>").empty(), !expected.stillImage);
    EXPECT_EQ(host.Lines("trace <***DeviceConnect***><WiaTracker>").empty(), !expected.wia);
}

INSTANTIATE_TEST_SUITE_P(On, WindowsVersions,
                         testing::Values(OfWindows{L"imaging_host_5_1.exe", 4, true, true},
                                         OfWindows{L"imaging_host_5_0.exe", 3, false, true},
                                         OfWindows{L"imaging_host_6_0.exe", 4, true, true},
                                         OfWindows{L"imaging_host_5_2.exe", 1, false, false},
                                         OfWindows{L"imaging_host_6_0_server.exe", 1, false, false},
                                         OfWindows{L"imaging_host_6_1.exe", 1, false, false}));

} // namespace
} // namespace kestraboot::tests
