// The application that belongs to the running proxy.
#include "tests/launcher/launch_fixture.h"

#include "tests/support/import_patch.h"

namespace kestraboot
{
namespace
{

using namespace kestraboot::tests;

constexpr const wchar_t* kNoneFound =
    L"<KestraBoot><!!! No Kestra application found for this Kestra proxy. This "
    L"situation should be avoided.>";

struct OwnLaunch : Launch {
    void LaunchIt(std::wstring mode) { handler.LaunchOwnKestra(mode, volume, drive); }
};

TEST_F(OwnLaunch, StartsTheFirstApplicationWhoseProxyIsRunning)
{
    RegisterSample(folder.Path(), L"One");
    const SampleApplication own = RegisterOwnSample(folder.Path(), L"Two");
    RegisterOwnSample(folder.Path(), L"Xray");
    LaunchIt(L"my own mode");
    EXPECT_EQ(spawns.Calls(), Calls{Started(own.commandPath, L"my own mode")});
    EXPECT_EQ(trace.Lines().size(), 1U);
}

TEST_F(OwnLaunch, ComparesThePathWithoutRegardToCase)
{
    const SampleApplication own = RegisterOwnSample(folder.Path(), L"One");
    std::wstring other = own.proxyPath;
    other[0] = static_cast<wchar_t>(other[0] ^ 0x20);
    PutText(HKEY_LOCAL_MACHINE, own.keyPath, L"ProxyPath", other);
    LaunchIt(L"direct");
    EXPECT_EQ(spawns.Calls(), Calls{Started(own.commandPath, L"direct")});
}

TEST_F(OwnLaunch, DoesNotRecogniseTheSameFileByAnotherName)
{
    const SampleApplication own = RegisterOwnSample(folder.Path(), L"One");
    const std::filesystem::path path = own.proxyPath;
    PutText(HKEY_LOCAL_MACHINE, own.keyPath, L"ProxyPath",
            (path.parent_path() / L"." / path.filename()).wstring());
    LaunchIt(L"direct");
    EXPECT_TRUE(spawns.Calls().empty());
    EXPECT_EQ(trace.Lines(), Lines{kNoneFound});
}

TEST_F(OwnLaunch, OfAProgramThatIsNoProxyStartsNothing)
{
    RegisterSample(folder.Path(), L"One");
    LaunchIt(L"direct");
    EXPECT_TRUE(spawns.Calls().empty());
    EXPECT_EQ(trace.Lines(), Lines{kNoneFound});
}

TEST_F(OwnLaunch, OfAProcessThatCannotOpenItselfStartsNothing)
{
    RegisterOwnSample(folder.Path(), L"One");
    const FAKE_IMPORT(OpenProcess) refused([](auto...) -> HANDLE {
        return nullptr;
    });
    LaunchIt(L"direct");
    EXPECT_TRUE(spawns.Calls().empty());
    EXPECT_EQ(trace.Lines(), Lines{kNoneFound});
}

TEST_F(OwnLaunch, PassesAnEmptyModeOnToBeRefused)
{
    RegisterOwnSample(folder.Path(), L"One");
    LaunchIt(L"");
    EXPECT_TRUE(spawns.Calls().empty());
    EXPECT_EQ(trace.Lines(), Lines{L"<KestraBoot><!!! Mode not set. Unable to launch Kestra.>"});
}

TEST_F(OwnLaunch, MaintainsTheOrderFirst)
{
    const SampleApplication own = RegisterOwnSample(folder.Path(), L"One");
    MakeKey(HKEY_LOCAL_MACHINE, kRunKey);
    LaunchIt(L"");
    EXPECT_EQ(StoredText(HKEY_LOCAL_MACHINE, kRunKey, kRunValue), L'"' + own.proxyPath + L'"');
}

} // namespace
} // namespace kestraboot
