// Command lines of started programs, for every possible text of a registry or a device.
#include "kestraboot/command_handler.h"
#include "tests/endurance/fuzz/fuzz.h"
#include "tests/endurance/fuzz/launch_model.h"
#include "tests/endurance/fuzz/launch_recorder.h"

#include <gtest/gtest.h>

namespace kestraboot::fuzz
{
namespace
{

struct LaunchFuzz : testing::Test {
    LaunchRecorder recorder;
    CKestraBootCommandHandler handler;
};

std::wstring AnyPath(Random& random)
{
    switch (random.Below(6)) {
    case 0:
        return random.Text();
    case 1:
        return L'"' + random.Text();
    case 2:
        return random.Text() + L'"';
    case 3:
        return L"\"C:\\Program Files\\" + random.TextOf(random.Below(12)) + L".exe\"";
    default:
        return L"C:\\Apps\\" + random.TextOf(random.Below(12)) + L".exe";
    }
}

std::wstring AnyIdentifier(Random& random)
{
    switch (random.Below(6)) {
    case 0:
        return {};
    case 1:
        return L"E:";
    case 2:
        return L"E:\\" + random.TextOf(random.Below(6)) + L'\\';
    case 3:
        return L'"' + random.Text();
    case 4:
        return random.Text() + std::wstring(random.Below(4), L'\\') + random.Pick({L"", L"\""});
    default:
        return random.Text();
    }
}

std::wstring AnyType(Random& random)
{
    static constexpr const wchar_t* kWords[] = {L"volume", L"camera", L"scanner", L"mobile",
                                                L"video",  L"audio",  L"archive", L"unknown"};
    return random.Chance(80) ? random.OtherCase(random.Pick(kWords)) : random.Text();
}

TEST_F(LaunchFuzz, AnApplicationGetsExactlyTheComposedCommandLine)
{
    Fuzz({.usual = 8'000}, [&](Random& random) {
        recorder.Reset(AnyMachine(random));
        std::wstring path = AnyPath(random);
        std::wstring mode = random.Chance(60)   ? random.Pick({L"direct", L"select"})
                            : random.Chance(30) ? L""
                                                : random.Text();
        std::wstring type = AnyType(random);
        std::wstring id = AnyIdentifier(random);
        const std::vector<std::wstring> given = {path, mode, type, id};
        recorder.spawns.Answer(random.Chance(50) ? 0 : -1); // makes no difference

        handler.LaunchKestra(path, mode, type, id);

        EXPECT_EQ((std::vector<std::wstring>{path, mode, type, id}), given);
        EXPECT_EQ(recorder.Seen(), ModelOfLaunch(recorder.machine, path, mode, type, id));
    });
}

TEST_F(LaunchFuzz, TheOrganisersProxyGetsTheMarkedIdentifier)
{
    Fuzz({.usual = 4'000}, [&](Random& random) {
        recorder.Reset(AnyMachine(random));
        std::wstring path = AnyPath(random);
        std::wstring type = AnyType(random);
        std::wstring id = AnyIdentifier(random);
        const bool started = random.Chance(80);
        recorder.spawns.Answer(started ? 0 : -1);

        handler.LaunchVel3Proxy(path, type, id);

        EXPECT_EQ(recorder.Seen(), ModelOfOrganiserLaunch(path, type, id, started));
    });
}

} // namespace
} // namespace kestraboot::fuzz
