// The still-image devices that are reported after changes of their list, with any answers of still
// imaging, the registry and the TWAIN source manager.
#include "foundation/com_pointer.h"
#include "tests/endurance/fuzz/fuzz.h"
#include "tests/endurance/fuzz/hive_registry.h"
#include "tests/endurance/fuzz/launch_recorder.h"
#include "tests/endurance/fuzz/steered_still_imaging.h"
#include "tests/endurance/fuzz/value_generator.h"
#include "tests/endurance/fuzz/wia_generator.h"
#include "tests/support/recorded_events.h"
#include "trackers/still_image/sti_devices.h"
#include "trackers/still_image/sti_report.h"

#include <gtest/gtest.h>

namespace kestraboot::fuzz
{
namespace
{

std::vector<std::wstring> AnyNames(Random& random)
{
    std::vector<std::wstring> names = {
        L"{6BDD1FC6}\\0001", L"{6BDD1FC6}\\0002", L"{6bdd1fc6}\\0001", L"A", L"b", L"B"};
    names.push_back(random.Text().substr(0, 128));
    names.push_back(std::wstring(random.Pick<std::size_t>({126, 127, 128}), L'n'));
    names.push_back(std::wstring(128, L'N'));
    return names;
}

StillDevice AnyDevice(Random& random, const std::vector<std::wstring>& names)
{
    StillDevice device;
    device.type = random.Pick({0x00010001U, 0x00020001U, 0x00020000U, 0x00030001U, 0U, 0x80020000U});
    device.name = names[random.Below(names.size())];
    device.capabilities = random.Pick({0U, 0x00420041U, 0x00000041U, 0x00410000U});
    return device;
}

StillListing AnyListing(Random& random, const std::vector<std::wstring>& names)
{
    StillListing listing;
    listing.result =
        random.Pick<HRESULT>({S_OK, S_OK, S_OK, S_OK, S_OK, S_OK, S_OK, S_OK, S_FALSE, E_FAIL});
    for (std::size_t i = random.Below(6); i > 0; --i) {
        listing.devices.push_back(AnyDevice(random, names));
    }
    if (random.Chance(6)) {
        listing.tooMany = random.Pick({1U, 1000U, 0x70000000U});
    }
    listing.noBuffer = random.Chance(6);
    return listing;
}

std::string AnyProduct(Random& random)
{
    static constexpr const char* kNames[] = {"Fine Scan",     "FINE SCAN", "fine scan ",   "Fine Scan 3",
                                             "WIA-Fine Scan", "wia-x",     "WIA",          "",
                                             "Sc\xE4n",       "SC\xC4N",   "\x80\xFF\x81", "%s%n"};
    std::string name = random.Pick(kNames);
    if (random.Chance(15)) {
        name = std::string(random.Pick<std::size_t>({32, 33, 34}), random.Pick({'n', 'N'}));
    }
    return name;
}

std::wstring Wide(const std::string& narrow)
{
    std::wstring wide(64, L'\0');
    const int length = ::MultiByteToWideChar(CP_ACP, 0, narrow.data(), static_cast<int>(narrow.size()),
                                             wide.data(), 64);
    wide.resize(static_cast<std::size_t>(length));
    return wide;
}

StillWorld AnyStillWorld(Random& random, const std::vector<std::wstring>& names)
{
    StillWorld world;
    world.loads = random.Chance(97);
    world.entry = random.Chance(97);
    world.create = random.Chance(96) ? S_OK : random.Pick<HRESULT>({S_FALSE, E_FAIL});
    world.createsNothing = random.Chance(3);
    world.initialize = random.Chance(96) ? S_OK : random.Pick<HRESULT>({S_FALSE, E_FAIL});
    world.onXp = random.Chance(50);
    world.twain.installed = random.Chance(93);
    world.twain.hasEntry = random.Chance(95);
    world.twain.open = random.Pick<unsigned short>({0, 0, 0, 0, 0, 0, 0, 1, 2, 7});
    world.twain.end = random.Pick<unsigned short>({7, 7, 7, 1, 2, 65535});
    for (std::size_t i = random.Below(5); i > 0; --i) {
        world.twain.sources.push_back(AnyProduct(random));
    }
    world.wia = AnyWia(random, names);
    for (const wchar_t* const name : {L"{6BDD1FC6}\\0001", L"{6BDD1FC6}\\0002", L"A", L"b"}) {
        if (random.Chance(60)) {
            const bool listed = !world.twain.sources.empty() && random.Chance(70);
            const std::string product = listed ? random.Pick(world.twain.sources) : AnyProduct(random);
            PutAnyText(random,
                       world.machine.Make(L"SYSTEM\\CurrentControlSet\\Control\\Class\\" +
                                          std::wstring(name) + L"\\DeviceData"),
                       L"TwainDS", random.Chance(97) ? Wide(product) : random.Text());
        }
    }
    return world;
}

TEST(StillImageFuzz, TheFirstNewDeviceOfAChangeIsReportedAsTheModelSays)
{
    HiveRegistry registry;
    SteeredStillImaging steered;
    tests::FakeWiaService wia;
    LaunchRecorder recorder;
    tests::RecordedEvents events;
    ASSERT_TRUE(SUCCEEDED(::CoInitialize(nullptr))); // entering it again is cheap then
    Fuzz({.usual = 4'000}, [&](Random& random) {
        const std::vector<std::wstring> names = AnyNames(random);
        StillWorld world = AnyStillWorld(random, names);
        registry.Become(world.machine, {});
        Become(wia, world.wia);
        steered.Become(world);
        Machine machine;
        machine.major = world.onXp ? 5 : 6;
        machine.minor = world.onXp ? 1 : random.Pick<DWORD>({0, 1});
        recorder.Reset(machine);
        events.Clear();

        StillModel model(world);
        {
            StiDevices devices;
            StillListing listing = AnyListing(random, names);
            steered.List(listing);
            EXPECT_EQ(devices.OpenSti(), model.Open(listing));
            for (std::size_t changes = random.Between(1, 4); changes > 0; --changes) {
                if (random.Chance(80)) {
                    listing = AnyListing(random, names);
                }
                const StiDeviceRecord* const found = devices.FindNewDevice();
                if (found != nullptr) {
                    ReportStiDevice(*found);
                }
                model.Change(listing);
            }
        }
        EXPECT_EQ((Reported{events.All(), recorder.trace.Lines()}), model.reported);
        EXPECT_EQ(registry.OpenKeys(), 0U);
        EXPECT_TRUE(steered.lists.empty());
        EXPECT_EQ(steered.windows, 0);
        EXPECT_EQ(steered.libraries, 0);
        EXPECT_EQ(wia.liveObjects, 0);
    });
    ::CoUninitialize();
}

} // namespace
} // namespace kestraboot::fuzz
