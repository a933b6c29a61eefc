#include "foundation/trace.h"
#include "tests/support/console_recorder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <io.h>

namespace kestraboot
{
namespace
{

TEST(Console, WritesTheFormattedTextToStandardOutputAtOnce)
{
    tests::ConsoleRecorder output;
    PrintConsole(L"\n !!! %ls is number %d.", L"This", 7);
    EXPECT_EQ(output.Text(), "\n !!! This is number 7.");
}

TEST(Console, OfAProgramWithoutOneIsNoError)
{
    std::fflush(stdout);
    const int before = _dup(1);
    _close(1);
    PrintConsole(L"nobody reads this");
    _dup2(before, 1);
    _close(before);
    EXPECT_EQ(std::fflush(stdout), 0); // the text is not buffered for later either
    std::clearerr(stdout);
}

} // namespace
} // namespace kestraboot
