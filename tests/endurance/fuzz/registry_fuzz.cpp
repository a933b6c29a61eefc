// The applications that are loaded from a registry, their order and fields, and the results and changes
// of the operations then.
#include "kestraboot/command_handler.h"
#include "registry/supported_formats.h"
#include "service/sniff_depth.h"
#include "tests/endurance/fuzz/fuzz.h"
#include "tests/endurance/fuzz/standard_output.h"
#include "tests/endurance/fuzz/steered_world.h"
#include "tests/endurance/fuzz/world_generator.h"

#include <gmock/gmock.h>

namespace kestraboot::fuzz
{
namespace
{

std::wstring AnyNameOf(Random& random, const std::vector<appInfo_tag>& applications)
{
    return applications.empty() || random.Chance(15) ? L"Viewer" : random.Pick(applications).Name;
}

/// The same operations of the product and of the model, one after another, on the same world.
class Comparison
{
public:
    Comparison(SteeredWorld& steeredWorld, StandardOutput& standardOutput, World& modelled)
        : steered(steeredWorld), output(standardOutput), model(modelled)
    {
    }

    void Load()
    {
        handler.LoadInformation();
        model.Load();
        ExpectSameList();
    }

    void Query(Random& random)
    {
        std::wstring name = AnyNameOf(random, model.applications);
        appInfo_tag found;
        const appInfo_tag* const named = model.Named(name);
        EXPECT_EQ(handler.GetApplicationInfo(name, found), named != nullptr);
        EXPECT_EQ(Shown(found), Shown(named != nullptr ? *named : appInfo_tag()));

        std::vector<appInfo_tag> defaults(random.Below(2));
        std::vector<appInfo_tag> expected = defaults;
        EXPECT_TRUE(handler.GetDefaultApplicationInfo(defaults));
        for (const appInfo_tag& application : model.Defaults()) {
            expected.push_back(application);
        }
        EXPECT_EQ(Shown(defaults), Shown(expected));

        std::vector<formatInfo_tag> formats;
        GetSupportedFormats(handler, formats);
        EXPECT_EQ(Shown(formats), Shown(model.SupportedFormats()));

        appInfo_tag record;
        const auto organiser = model.Organiser();
        EXPECT_EQ(handler.GetVel3Info(record), organiser.has_value());
        EXPECT_EQ(Shown(record), Shown(organiser.value_or(appInfo_tag())));
    }

    /// A case that maintains the order, and so may end the process.
    void Change(Random& random)
    {
        std::wstring name = AnyNameOf(random, model.applications);
        std::wstring value = random.OtherCase(random.Pick({L"yes", L"yes", L"no", L"maybe", L""}));
        const auto status = static_cast<std::int32_t>(random.Pick({0U, 1U, 2U, 0xFFFFFFFFU}));
        const std::size_t operation = random.Below(6);
        const std::wstring answered = ResultOf([&]() -> std::wstring {
            switch (operation) {
            case 0:
                return std::to_wstring(SetDefaultStatus(name, value));
            case 1:
                return std::to_wstring(handler.GetKestraLaunchStatus());
            case 2:
                return std::to_wstring(handler.SetKestraLaunchStatus(status));
            case 3: {
                std::wstring locale = L"before";
                const bool has = handler.GetKestraLocaleString(locale);
                return std::to_wstring(has) + locale;
            }
            case 4:
                return std::to_wstring(ReadSniffDepth(handler));
            default:
                handler.MaintainOrder();
                return L"maintained";
            }
        });
        const std::wstring expected = ResultOf([&]() -> std::wstring {
            switch (operation) {
            case 0:
                return std::to_wstring(model.SetDefaultStatus(name, value));
            case 1:
                return std::to_wstring(model.LaunchStatus());
            case 2:
                return std::to_wstring(model.SetLaunchStatus(status));
            case 3: {
                const auto locale = model.Locale();
                return std::to_wstring(locale.has_value()) + locale.value_or(L"en_us");
            }
            case 4:
                return std::to_wstring(model.SniffDepth());
            default:
                model.MaintainOrder();
                return L"maintained";
            }
        });
        EXPECT_EQ(answered, expected) << "operation " << operation;
        ExpectSameList();
    }

    [[nodiscard]] bool Ended() const noexcept { return ended; }

    void ExpectTheSameSeen()
    {
        EXPECT_EQ(steered.recorder.Seen(), model.seen);
        EXPECT_EQ(output.Taken(), model.console);
    }

private:
    template <typename Operation>
    std::wstring ResultOf(Operation operation)
    {
        try {
            return operation();
        } catch (const ProcessEnded&) {
            ended = true;
            return L"the end of the process";
        }
    }

    bool SetDefaultStatus(std::wstring& name, std::wstring& value)
    {
        bool result = false;
        output.During([&] {
            result = handler.SetApplicationDefaultStatus(name, value);
        });
        return result;
    }

    void ExpectSameList()
    {
        std::vector<appInfo_tag> all(1);
        EXPECT_TRUE(handler.GetAllApplicationInfo(all));
        EXPECT_EQ(Shown(all), Shown(model.applications));
    }

    SteeredWorld& steered;
    StandardOutput& output;
    CKestraBootCommandHandler handler;
    ApplicationModel model;
    bool ended = false;
};

void CheckOneRegistry(SteeredWorld& steered, StandardOutput& output, Random& random, World world)
{
    steered.Become(world, {});
    Comparison comparison(steered, output, world);
    for (std::size_t steps = random.Between(1, 4); steps > 0 && !comparison.Ended(); --steps) {
        switch (random.Below(3)) {
        case 0:
            comparison.Load();
            break;
        case 1:
            comparison.Load();
            comparison.Query(random);
            break;
        default:
            comparison.Change(random);
        }
    }
    comparison.ExpectTheSameSeen();
    if (random.Chance(40)) { // expensive
        EXPECT_EQ(steered.MachineLines(), world.machine.Lines());
        EXPECT_EQ(steered.UserLines(), world.user.Lines());
    }
    EXPECT_EQ(steered.OpenKeys(), 0U);
}

TEST(RegistryFuzz, ApplicationsAreLoadedQueriedAndChangedAsTheModelSays)
{
    SteeredWorld steered(Keys::InMemory);
    StandardOutput output;
    Fuzz({.usual = 1'500, .share = 2}, [&](Random& random) {
        World world = AnyWorld(random);
        world.isAdministrators = random.Chance(50);
        CheckOneRegistry(steered, output, random, std::move(world));
    });
}

TEST(RegistryFuzz, RealKeysMakeNoDifference)
{
    SteeredWorld steered(Keys::Real);
    StandardOutput output;
    Fuzz({.usual = 40, .share = 50}, [&](Random& random) {
        CheckOneRegistry(steered, output, random, AnyWorld(random));
    });
}

} // namespace
} // namespace kestraboot::fuzz
