// Cards, WIA cameras, TWAIN scanners and phones that arrive at the same time, again and again, at the
// real boot program, which starts a real application for each: its resources stay constant.
#include "samples/simulators/cards/card_slot.h"
#include "samples/simulators/cards/volume_message.h"
#include "samples/simulators/phones/phone_pipe.h"
#include "samples/simulators/wia/service_window.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/stand_in_folder.h"
#include "tests/support/storm_size.h"
#include "tests/support/unix_path.h"
#include "tests/support/watchdog.h"
#include "tests/system/imaging/resource_use.h"
#include "tests/system/system_test.h"

#include <dbt.h>

#include <iostream>
#include <vector>

namespace kestraboot::tests
{
namespace
{

const std::string kDetected = "<***DeviceConnect***>";

class Soak : public SystemTest
{
protected:
    Soak()
    {
        // An application that ends at once: the windows of a hundred viewers would slow each broadcast.
        app.Put(L"echo_command_line.exe", app.Application().filename());
        for (const wchar_t* const standIn : {L"sti.dll", L"twain_32.dll"}) {
            std::filesystem::copy_file(BuiltPrograms() / L"imaging" / standIn,
                                       app.folder.Path() / standIn);
        }
        std::filesystem::create_directories(app.folder.Path() / L"moxplugins");
        std::filesystem::copy_file(BuiltPrograms() / L"nokiamanager.mox",
                                   app.folder.Path() / L"moxplugins" / L"nokiamanager.mox");
        for (const wchar_t* const scanner : {L"Even", L"Odd"}) {
            PutText(HKEY_LOCAL_MACHINE,
                    std::wstring(L"SYSTEM\\CurrentControlSet\\Control\\Class\\") + scanner +
                        L"\\DeviceData",
                    L"TwainDS", L"Flatbed");
        }
        standIns.Write("twain_sources.txt", {"source Flatbed"});
        standIns.Write("sti_devices.txt", {});
        standIns.Write("wia_devices.txt", {"camera Wide"});
        card.AddFile(L"DCIM/100TEST/IMG_0001.JPG", "picture");
        ChildProcess service(BuiltPrograms() / L"wia_service.exe", L"register");
        EXPECT_EQ(service.ExitCode(), 0U);
        SetWindowsVersion(L"kestraboot.exe", L"vista");
    }
    ~Soak() override { static_cast<void>(simulators::TakeCardOut(L'E')); }

    std::string Start(const std::string& device) const
    {
        return "\"" + app.Application().string() + "\" module=kestrafetch params mode=direct " + device;
    }

    static bool PhoneArrives()
    {
        PhoneNews news = {1, L"Phone 1"};
        PhoneAnswer answer = 1;
        DWORD answered = 0;
        return ::CallNamedPipeW(kPhonePipe, &news, sizeof news, &answer, sizeof answer, &answered,
                                30'000) &&
               answer == 0;
    }

    Installation app{L"App"};
    StandInFolder standIns;
    TempFolder card;
};

/// The mean of `member` over samples [from, to).
template <typename Member>
double Mean(const std::vector<ResourceUse>& samples, std::size_t from, std::size_t to, Member member)
{
    double sum = 0;
    for (std::size_t i = from; i < to; ++i) {
        sum += static_cast<double>(samples[i].*member);
    }
    return sum / static_cast<double>(to - from);
}

TEST_F(Soak, OfAllDevicesAtOnceLeaksNothing)
{
    ChildProcess boot(app.Proxy());
    const HWND volumes = AwaitWindow(boot.Id(), kVolumeWindow);
    ASSERT_NE(AwaitWindow(boot.Id(), L"STITrackerWindow"), nullptr);
    ASSERT_TRUE(trace.Await(kDetected + "<WiaTracker><WIA devices will be detected>."));
    ASSERT_TRUE(trace.Await(kDetected + "<Phones><Devices will be detected.>"));

    constexpr int kWarmUp = 4; // COM makes threads and connections of its own
    // COM opens and drops up to 8 handles at any time: with this number of rounds one handle a round is
    // more.
    constexpr int kLeastRounds = 24;
    std::vector<ResourceUse> samples;
    const ULONGLONG end = ::GetTickCount64() + static_cast<ULONGLONG>(StormSize(8, 600)) * 1000;
    for (int round = 0; ::GetTickCount64() < end || round < kWarmUp + kLeastRounds; ++round) {
        RestartWatchdog(); // many rounds: each has the time of a test
        trace.Clear();
        standIns.Write("sti_devices.txt", {round % 2 == 0 ? "scanner Even" : "scanner Odd"});
        ASSERT_TRUE(simulators::InsertCard(L'E', UnixPath(card.Path())));
        ASSERT_TRUE(simulators::TellServiceToFire(L"Wide"));
        ASSERT_TRUE(::PostMessageW(HWND_BROADCAST, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0));
        ASSERT_TRUE(PhoneArrives());
        for (const char* const device :
             {"devType=volume priDevId=\"E:\"", "devType=camera priDevId=\"Wide\"",
              "devType=scanner priDevId=\"Flatbed\"", "devType=mobile priDevId=\"Phone 1\""}) {
            ASSERT_TRUE(trace.Await(Start(device)))
                << device << " in round " << round << testing::PrintToString(trace.LinesOf(boot.Id()));
        }
        ASSERT_TRUE(simulators::TakeCardOut(L'E'));
        ASSERT_TRUE(trace.Await(kDetected + "<VolumeTracker><Exiting from polling mode.>"));
        // Wine removes a drive in two steps, and a poll between them still treats the card as known.
        // Windows reports a removal after it is complete; the test sends that report here.
        ASSERT_TRUE(
            simulators::SendVolumeMessage(volumes, DBT_DEVICEREMOVECOMPLETE, L'E', SMTO_NORMAL, 30'000));
        if (round >= kWarmUp) {
            samples.push_back(ResourceUseOf(boot.Handle()));
        }
    }

    const std::size_t quarter = samples.size() / 4;
    std::cout << samples.size() << " rounds: " << samples.front() << " -> " << samples.back() << "\n";
    const auto growth = [&](auto member) {
        return Mean(samples, samples.size() - quarter, samples.size(), member) -
               Mean(samples, 0, quarter, member);
    };
    const double roundsBetween = 0.75 * static_cast<double>(samples.size());
    EXPECT_LT(growth(&ResourceUse::handles), 0.5 * roundsBetween) << "one handle or more in two rounds";
    EXPECT_LT(growth(&ResourceUse::threads), 0.5 * roundsBetween);
    EXPECT_LT(growth(&ResourceUse::windows), 1);
    EXPECT_LT(growth(&ResourceUse::privateBytes), 7'000'000)
        << "the stack of a thread of COM takes 3 MB";
    Quit(boot);
}

} // namespace
} // namespace kestraboot::tests
