// The window by which others ask the boot program to quit.
#include "tests/system/system_test.h"

namespace kestraboot::tests
{
namespace
{

class BootProgramsWindow : public SystemTest
{
protected:
    void SetUp() override
    {
        window = AwaitWindow(boot.Id(), kBootTitle);
        ASSERT_NE(window, nullptr);
    }

    Installation app{L"App"};
    ChildProcess boot{app.Proxy()};
    HWND window = nullptr;
};

TEST_F(BootProgramsWindow, IsATopLevelOneThatIsNotShown)
{
    EXPECT_EQ(::GetAncestor(window, GA_PARENT), ::GetDesktopWindow());
    EXPECT_FALSE(::IsWindowVisible(window));
    Quit(boot);
}

TEST_F(BootProgramsWindow, OutlivesMessagesThatArePosted)
{
    for (const UINT message : {UINT{WM_NULL}, UINT{WM_USER}, UINT{WM_TIMER}}) {
        ASSERT_TRUE(::PostMessageW(window, message, 0, 0));
    }
    ::SendMessageW(window, WM_NULL, 0, 0);
    EXPECT_FALSE(Within(500, [this] {
        return !boot.Running();
    }));
    Quit(boot);
}

TEST_F(BootProgramsWindow, EndsTheProgramWithTheSessionAndNotWhereTheSessionGoesOn)
{
    ::SendMessageW(window, WM_ENDSESSION, FALSE, 0);
    EXPECT_FALSE(Within(500, [this] {
        return !boot.Running();
    }));
    ::SendMessageW(window, WM_ENDSESSION, TRUE, 0);
    EXPECT_EQ(boot.ExitCode(), kDone);
}

TEST_F(BootProgramsWindow, EndsTheProgramWhenItIsClosed)
{
    ::SendMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_EQ(boot.ExitCode(), kDone);
}

} // namespace
} // namespace kestraboot::tests
