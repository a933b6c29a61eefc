// kestraboot.exe -default NAME yes|no
#include "tests/support/registry_sandbox.h"
#include "tests/system/system_test.h"

#include <array>

namespace kestraboot::tests
{
namespace
{

class DefaultSwitch : public SystemTest
{
protected:
    DefaultSwitch()
    {
        // A, B and C have machine-wide preferences (their installers'); the user's come with the first
        // look.
        PutDword(HKEY_LOCAL_MACHINE, a.KeyPath() + L"\\Preferences", L"DefaultFlag", 1);
    }

    DWORD Run(const std::wstring& arguments)
    {
        ChildProcess boot(c.Proxy(), L"-default " + arguments);
        const DWORD code = boot.ExitCode();
        output = boot.Output();
        return code;
    }

    /// The flags of A, B and C; 99 if none is stored.
    std::array<std::uint32_t, 3> Flags(HKEY hive) const
    {
        const auto flag = [&](const Installation& app) {
            return StoredDword(hive, app.KeyPath() + L"\\Preferences", L"DefaultFlag").value_or(99);
        };
        return {flag(a), flag(b), flag(c)};
    }

    // No name begins with a letter of "SOFTWARE\Corvane\", which would prevent the user's key from being
    // created.
    Installation a{L"Maker One"};
    Installation b{L"Maker Two"};
    Installation c{L"Maker Three"};
    std::string output;
};

using Three = std::array<std::uint32_t, 3>;

TEST_F(DefaultSwitch, YesMakesTheApplicationTheOnlyDefaultInBothHives)
{
    EXPECT_EQ(Run(L"\"Maker Two\" yes"), kDone);
    EXPECT_EQ(Flags(HKEY_CURRENT_USER), (Three{0, 1, 0}));
    EXPECT_EQ(Flags(HKEY_LOCAL_MACHINE), (Three{0, 1, 0}));
    EXPECT_EQ(output, "");
    EXPECT_EQ(Run(L"\"Maker Three\" YES"), kDone);
    EXPECT_EQ(Flags(HKEY_CURRENT_USER), (Three{0, 0, 1}));
    EXPECT_EQ(Flags(HKEY_LOCAL_MACHINE), (Three{0, 0, 1}));
    EXPECT_EQ(Run(L"\"Maker Three\" yes"), kDone) << "once more changes nothing";
    EXPECT_EQ(Flags(HKEY_CURRENT_USER), (Three{0, 0, 1}));
}

TEST_F(DefaultSwitch, NoClearsThatApplicationAlone)
{
    EXPECT_EQ(Run(L"\"Maker Two\" yes"), kDone);
    EXPECT_EQ(Run(L"\"Maker One\" no"), kDone);
    EXPECT_EQ(Flags(HKEY_CURRENT_USER), (Three{0, 1, 0}));
    EXPECT_EQ(Run(L"\"Maker Two\" No"), kDone);
    EXPECT_EQ(Flags(HKEY_CURRENT_USER), (Three{0, 0, 0}));
    EXPECT_EQ(Flags(HKEY_LOCAL_MACHINE), (Three{0, 0, 0}));
}

TEST_F(DefaultSwitch, AnotherValueIsAUsageErrorAndWritesNothing)
{
    EXPECT_EQ(Run(L"\"Maker Two\" maybe"), kUsage);
    EXPECT_EQ(output, "\n !!! Invalid second argument value.");
    EXPECT_EQ(Flags(HKEY_LOCAL_MACHINE), (Three{1, 99, 99}));
    EXPECT_EQ(Run(L"\"Maker Two\" \"\""), kUsage);
}

TEST_F(DefaultSwitch, AnUnknownNameIsReportedBeforeTheValue)
{
    const std::string told = "\n !!! Invalid first argument value."
                             "\n !!! This application is not registered as Kestra compatible.";
    EXPECT_EQ(Run(L"Nobody yes"), kUnknownApplication);
    EXPECT_EQ(output, told);
    EXPECT_EQ(Run(L"Nobody maybe"), kUnknownApplication);
    EXPECT_EQ(output, told);
    EXPECT_EQ(Run(L"\"maker two\" yes"), kUnknownApplication) << "letter case counts in a name";
    EXPECT_EQ(Flags(HKEY_LOCAL_MACHINE), (Three{1, 99, 99}));
}

TEST_F(DefaultSwitch, PointsTheAutoRunEntryAtTheProxyThatRan)
{
    EXPECT_EQ(Run(L"\"Maker One\" yes"), kDone);
    EXPECT_EQ(AutoRunEntry(), L"\"" + c.Proxy().wstring() + L"\"");
}

TEST_F(DefaultSwitch, WithoutAConsoleIsNoError)
{
    ChildProcess boot(c.Proxy(), L"-default Nobody yes", WritesOn::Nothing);
    EXPECT_EQ(boot.ExitCode(), kUnknownApplication);
}

TEST_F(DefaultSwitch, WithoutAnyApplicationTheProcessEndsWithTwoLines)
{
    for (const Installation* const app : {&a, &b, &c}) {
        app->Unregister();
    }
    ChildProcess boot(c.Proxy(), L"-default \"Maker One\" yes");
    EXPECT_EQ(boot.ExitCode(), kDone);
    EXPECT_EQ(trace.LinesOf(boot.Id()), (std::vector<std::string>{kNoneFound, kDeletingRunKey}));
    EXPECT_EQ(boot.Output(), "");
}

} // namespace
} // namespace kestraboot::tests
