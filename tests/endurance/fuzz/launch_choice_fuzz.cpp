// The application that is started for a device, and its command.
#include "kestraboot/command_handler.h"
#include "tests/endurance/fuzz/fuzz.h"
#include "tests/endurance/fuzz/steered_world.h"
#include "tests/endurance/fuzz/world_generator.h"

#include <gtest/gtest.h>

namespace kestraboot::fuzz
{
namespace
{

constexpr const wchar_t* kDirect = L"direct";
constexpr const wchar_t* kSelect = L"select";

struct Device {
    std::wstring type;
    std::wstring id;
};

Launched ModelOfDefaultLaunch(World& world, const Machine& machine, const Device& device)
{
    ApplicationModel model(world);
    try {
        model.MaintainOrder();
    } catch (const ProcessEnded&) {
        return model.seen;
    }
    const std::vector<appInfo_tag> defaults = model.Defaults();
    if (defaults.size() == 1) {
        return ModelOfLaunch(machine, defaults[0].CmdLine, kDirect, device.type, device.id);
    }
    const bool choice = model.applications.size() > 1 || model.Organiser().has_value();
    return ModelOfLaunch(machine, model.applications[0].CmdLine, choice ? kSelect : kDirect, device.type,
                         device.id);
}

Launched ModelOfOwnLaunch(World& world, const Machine& machine, const std::wstring& mode,
                          const Device& device)
{
    ApplicationModel model(world);
    try {
        model.MaintainOrder();
    } catch (const ProcessEnded&) {
        return model.seen;
    }
    const appInfo_tag* const own = model.Own();
    if (own == nullptr) {
        return {{},
                {L"<KestraBoot><!!! No Kestra application found for this Kestra proxy. This situation "
                 L"should be avoided.>"}};
    }
    return ModelOfLaunch(machine, own->CmdLine, mode, device.type, device.id);
}

TEST(LaunchChoiceFuzz, StartsTheDefaultOrOwnApplicationInTheModeOfTheModel)
{
    SteeredWorld steered(Keys::InMemory);
    Fuzz({.usual = 3'000}, [&](Random& random) {
        World world = random.Chance(80) ? SoundWorld(random) : AnyWorld(random);
        const Machine machine = random.Chance(30) ? AnyMachine(random) : Machine();
        world.isAdministrators = random.Chance(50);
        steered.Become(world, machine);
        Device device = {random.Chance(70) ? L"volume" : random.Text(),
                         random.Chance(70) ? L"E:" : random.Text()};
        std::wstring mode = random.Chance(80) ? L"any" : random.Text();
        const bool own = random.Chance(40);
        CKestraBootCommandHandler handler;
        try {
            if (own) {
                handler.LaunchOwnKestra(mode, device.type, device.id);
            } else {
                handler.LaunchDefaultKestra(device.type, device.id);
            }
        } catch (const ProcessEnded&) {
        }
        EXPECT_EQ(steered.recorder.Seen(), own ? ModelOfOwnLaunch(world, machine, mode, device)
                                               : ModelOfDefaultLaunch(world, machine, device));
    });
}

} // namespace
} // namespace kestraboot::fuzz
