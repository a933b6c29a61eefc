// kestraboot.exe -uninstall
#include "tests/system/system_test.h"

#include <gmock/gmock.h>

#include <memory>

namespace kestraboot::tests
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

const std::string kUpperCaseLine =
    "<KESTRABOOT><Deleting run key. Auto run is going to discontinue from now onwards.>";

class Uninstalling : public SystemTest
{
protected:
    /// An instance that serves; it answers when it is asked to quit.
    std::unique_ptr<ChildProcess> Serve(const Installation& installed)
    {
        auto boot = std::make_unique<ChildProcess>(installed.Proxy());
        EXPECT_NE(AwaitWindow(boot->Id(), kBootTitle), nullptr);
        return boot;
    }

    static std::string Switching(const Installation& to)
    {
        return "<KestraBoot><Switching application to ...<" + std::filesystem::path(to.name).string() +
               "><" + to.Proxy().string() + "> >";
    }

    Installation app{L"App"};
};

TEST_F(Uninstalling, WithoutAnotherInstanceDoesNothing)
{
    Installation other(L"Other");
    ChildProcess uninstall(app.Proxy(), L"-uninstall");
    EXPECT_EQ(uninstall.ExitCode(), kDone);
    EXPECT_THAT(trace.LinesOf(uninstall.Id()), IsEmpty());
    EXPECT_EQ(AutoRunEntry(), L"(none)");
}

TEST_F(Uninstalling, IgnoresInstancesOfOtherExecutables)
{
    Installation other(L"Other");
    const auto serving = Serve(other);
    ChildProcess uninstall(app.Proxy(), L"-UNINSTALL");
    EXPECT_EQ(uninstall.ExitCode(), kDone);
    EXPECT_THAT(trace.LinesOf(uninstall.Id()), IsEmpty());
    EXPECT_TRUE(serving->Running());
    Quit(*serving);
}

TEST_F(Uninstalling, StopsTheOtherInstanceAndStartsTheNextApplicationsProxy)
{
    Installation other(L"Other");
    const auto serving = Serve(app);
    app.Unregister();
    const ULONGLONG started = ::GetTickCount64();
    ChildProcess uninstall(app.Proxy(), L"-uninstall");
    EXPECT_EQ(uninstall.ExitCode(), kDone);
    EXPECT_GE(::GetTickCount64() - started, 4'000U) << "two seconds to quit, and two to exit";
    EXPECT_EQ(serving->ExitCode(), kDone) << "it quit by itself";
    EXPECT_THAT(trace.LinesOf(uninstall.Id()), ElementsAre(Switching(other)));
    EXPECT_EQ(AutoRunEntry(), L"\"" + other.Proxy().wstring() + L"\"");
    EndServing();
}

TEST_F(Uninstalling, StopsTwoInstancesOneAfterTheOther)
{
    // Two instances of one executable: the second is a stubborn host, because a second kestraboot.exe
    // exits at once.
    Installation stubborn(L"Stubborn", L"stubborn_host.exe");
    Installation other(L"Other");
    const auto first = Serve(stubborn);
    const auto second = Serve(stubborn);
    stubborn.Unregister();
    app.Unregister();
    const ULONGLONG started = ::GetTickCount64();
    ChildProcess uninstall(stubborn.Proxy(), L"-uninstall");
    EXPECT_EQ(uninstall.ExitCode(), kDone);
    EXPECT_GE(::GetTickCount64() - started, 6'000U);
    EXPECT_EQ(first->ExitCode(), 0U) << "terminated, because it did not quit";
    EXPECT_EQ(second->ExitCode(), 0U);
    EXPECT_THAT(trace.LinesOf(uninstall.Id()), ElementsAre(Switching(other)));
    EndServing();
}

TEST_F(Uninstalling, TerminatesAnInstanceThatIgnoresTheRequest)
{
    Installation stubborn(L"Stubborn", L"stubborn_host.exe");
    const auto serving = Serve(stubborn);
    stubborn.Unregister();
    ChildProcess uninstall(stubborn.Proxy(), L"-uninstall");
    EXPECT_EQ(uninstall.ExitCode(), 0U);
    EXPECT_EQ(serving->ExitCode(), 0U) << "7 would mean that it quit";
    EndServing();
}

TEST_F(Uninstalling, WithNoApplicationButItsOwnGivesDevicesBackToTheOrganiser)
{
    LegacyOrganiser organiser;
    const auto serving = Serve(app);
    ASSERT_TRUE(AwaitOrders(organiser, {"-d"}));
    ChildProcess uninstall(app.Proxy(), L"-uninstall"); // still registered
    EXPECT_EQ(uninstall.ExitCode(), kDone);
    EXPECT_THAT(trace.LinesOf(uninstall.Id()), ElementsAre(kUpperCaseLine));
    EXPECT_EQ(AutoRunEntry(), L"(none)");
    EXPECT_TRUE(AwaitOrders(organiser, {"-d", "-i"}));
}

TEST_F(Uninstalling, WithAnEmptyRegistryEndsWithTwoLines)
{
    LegacyOrganiser organiser;
    const auto serving = Serve(app);
    ASSERT_TRUE(AwaitOrders(organiser, {"-d"}));
    app.Unregister();
    ChildProcess uninstall(app.Proxy(), L"-uninstall");
    EXPECT_EQ(uninstall.ExitCode(), kDone);
    EXPECT_THAT(trace.LinesOf(uninstall.Id()), ElementsAre(kNoneFound, kDeletingRunKey));
    EXPECT_TRUE(AwaitOrders(organiser, {"-d", "-i"}));
}

TEST_F(Uninstalling, PassesOverApplicationsWhoseProxyIsGone)
{
    Installation gone(L"Gone");
    Installation other(L"Other");
    const auto serving = Serve(app);
    app.Unregister();
    std::filesystem::remove(gone.Proxy());
    ChildProcess uninstall(app.Proxy(), L"-uninstall");
    EXPECT_EQ(uninstall.ExitCode(), kDone);
    EXPECT_THAT(trace.LinesOf(uninstall.Id()), ElementsAre(Switching(other)));
    EndServing();
}

} // namespace
} // namespace kestraboot::tests
