// The application that starts when a device arrives.
#include "tests/launcher/launch_fixture.h"

#include "tests/support/process_end.h"

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

struct DefaultLaunch : Launch {
    SampleApplication Add(const std::wstring& name, std::uint32_t defaultFlag = 0)
    {
        const SampleApplication sample = RegisterSample(folder.Path(), name);
        PutDword(HKEY_CURRENT_USER, sample.Preferences(), L"DefaultFlag", defaultFlag);
        return sample;
    }
    void LaunchIt() { handler.LaunchDefaultKestra(volume, drive); }
};

TEST_F(DefaultLaunch, StartsTheOneDefaultDirectly)
{
    Add(L"One");
    const SampleApplication chosen = Add(L"Two", 5);
    Add(L"Xray");
    RegisterOrganiser(L"C:\\Legacy");
    LaunchIt();
    EXPECT_EQ(spawns.Calls(), Calls{Started(chosen.commandPath, L"direct")});
    EXPECT_EQ(trace.Lines().size(), 1U); // the command line
}

TEST_F(DefaultLaunch, WithSeveralDefaultsLetsTheUserSelectInTheFirstApplication)
{
    const SampleApplication first = Add(L"One");
    Add(L"Two", 1);
    Add(L"Xray", 1);
    LaunchIt();
    EXPECT_EQ(spawns.Calls(), Calls{Started(first.commandPath, L"select")});
}

TEST_F(DefaultLaunch, WithoutADefaultLetsTheUserSelectInTheFirstApplication)
{
    const SampleApplication first = Add(L"One");
    Add(L"Two");
    LaunchIt();
    EXPECT_EQ(spawns.Calls(), Calls{Started(first.commandPath, L"select")});
}

TEST_F(DefaultLaunch, StartsTheOnlyApplicationDirectly)
{
    const SampleApplication only = Add(L"One");
    LaunchIt();
    EXPECT_EQ(spawns.Calls(), Calls{Started(only.commandPath, L"direct")});
}

TEST_F(DefaultLaunch, CountsTheLegacyOrganiserAsASecondApplication)
{
    const SampleApplication only = Add(L"One");
    RegisterOrganiser(L"C:\\Legacy");
    LaunchIt();
    EXPECT_EQ(spawns.Calls(), Calls{Started(only.commandPath, L"select")});
}

TEST_F(DefaultLaunch, StartsTheOnlyApplicationDirectlyIfItIsTheDefaultToo)
{
    const SampleApplication only = Add(L"One", 1);
    RegisterOrganiser(L"C:\\Legacy");
    LaunchIt();
    EXPECT_EQ(spawns.Calls(), Calls{Started(only.commandPath, L"direct")});
}

TEST_F(DefaultLaunch, PassesTheDeviceOnAndLeavesTheArgumentsUnchanged)
{
    Add(L"One");
    std::wstring type = L"camera";
    std::wstring id;
    handler.LaunchDefaultKestra(type, id);
    EXPECT_EQ(spawns.Calls().at(0).arguments.back(), L"mode=direct");
    id = L"WIA-1";
    handler.LaunchDefaultKestra(type, id);
    EXPECT_EQ(spawns.Calls().at(1).arguments.at(4), L"devType=camera");
    EXPECT_EQ(spawns.Calls().at(1).arguments.at(5), L"priDevId=\"WIA-1\"");
    EXPECT_EQ(type + id, L"cameraWIA-1");
}

TEST_F(DefaultLaunch, MaintainsTheOrderFirst)
{
    const SampleApplication only = Add(L"One");
    MakeKey(HKEY_LOCAL_MACHINE, kRunKey);
    spawns.OnSpawn([&](const SpawnCall&) {
        EXPECT_EQ(StoredText(HKEY_LOCAL_MACHINE, kRunKey, kRunValue), L'"' + only.proxyPath + L'"');
    });
    LaunchIt();
    EXPECT_EQ(spawns.Calls().size(), 1U);
}

TEST_F(DefaultLaunch, WithoutAnApplicationEndsTheProcess)
{
    const ProcessEndCatcher catcher;
    EXPECT_THROW(LaunchIt(), ProcessEnded);
    EXPECT_TRUE(spawns.Calls().empty());
    EXPECT_EQ(trace.Lines().size(), 2U);
}

} // namespace
} // namespace kestraboot
