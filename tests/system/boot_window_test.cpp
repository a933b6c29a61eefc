// The window through which others ask the boot program to quit.
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

    /// Whether the program handles a message that is posted now, and one that is posted after it: a
    /// program that exits leaves its loop between the two. The message marks a window as visible or not,
    /// which another process can see.
    [[nodiscard]] bool GoesOnServing() const
    {
        for (const BOOL visible : {TRUE, FALSE}) {
            const bool served = ::PostMessageW(window, WM_SETREDRAW, static_cast<WPARAM>(visible), 0) &&
                                Within(30'000, [&] {
                                    return !::IsWindow(window) || ::IsWindowVisible(window) == visible;
                                });
            if (!served || !::IsWindow(window)) {
                return false;
            }
        }
        return true;
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
    EXPECT_TRUE(GoesOnServing());
    EXPECT_TRUE(boot.Running());
    Quit(boot);
}

TEST_F(BootProgramsWindow, EndsTheProgramWithTheSessionAndNotIfTheSessionContinues)
{
    ::SendMessageW(window, WM_ENDSESSION, FALSE, 0);
    EXPECT_TRUE(GoesOnServing());
    EXPECT_TRUE(boot.Running());
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
