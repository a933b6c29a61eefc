// Tests that fail in every way that the runner distinguishes.
#include <gtest/gtest.h>

#include <windows.h>

namespace
{

TEST(Planted, Passes) {}

TEST(Planted, Fails)
{
    EXPECT_EQ(1, 2) << "as planted <&\x01>";
}

TEST(Planted, IsSkippedByItself)
{
    GTEST_SKIP() << "no reason";
}

TEST(Planted, IsSkippedByTheList)
{
    FAIL() << "this test must not run";
}

TEST(Planted, Crashes)
{
    int* volatile nowhere = nullptr;
    *nowhere = 1;
}

TEST(Planted, EndsTheProcess)
{
    ::TerminateProcess(::GetCurrentProcess(), 0);
}

TEST(Planted, HangsUnderTheWatchdog)
{
    ::Sleep(INFINITE);
}

TEST(Planted, PassesAfterAll) {}

} // namespace
