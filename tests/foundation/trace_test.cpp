#include "foundation/trace.h"
#include "tests/support/format_failure.h"

#include <gtest/gtest.h>

#include <string>

namespace kestraboot
{
namespace
{

TEST(TraceLine, HoldsWhatWasFormatted)
{
    TraceBuffer line = {};
    EXPECT_EQ(FormatTraceLine(line, L"<%ls><%d>", L"E:", 7), 7);
    EXPECT_STREQ(line, L"<E:><7>");
}

TEST(TraceLine, OfExactly259CharactersIsWhole)
{
    const std::wstring text(259, L'x');
    TraceBuffer line = {};
    EXPECT_EQ(FormatTraceLine(line, L"%ls", text.c_str()), 259);
    EXPECT_EQ(line, text);
}

TEST(TraceLine, LongerThanTheBufferIsCutAt259)
{
    struct {
        TraceBuffer line;
        wchar_t guard;
    } memory = {{}, L'#'};
    for (const std::size_t length : {260U, 261U, 32767U}) {
        EXPECT_EQ(FormatTraceLine(memory.line, L"%ls", std::wstring(length, L'x').c_str()), 259)
            << length;
        EXPECT_EQ(memory.line, std::wstring(259, L'x')) << length;
        EXPECT_EQ(memory.guard, L'#') << length;
    }
}

TEST(TraceLine, IsEmptyWhenFormattingFails)
{
    const tests::FormatFailure fails;
    TraceBuffer line = L"before";
    EXPECT_EQ(FormatTraceLine(line, L"%ls", L"text"), -1);
    EXPECT_STREQ(line, L"");
}

} // namespace
} // namespace kestraboot
