#include "foundation/trace.h"
#include "tests/support/import_patch.h"

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
    const FAKE_IMPORT(_vsnwprintf) fails([](wchar_t* buffer, std::size_t, const wchar_t*, va_list) {
        buffer[0] = L'?'; // half a line
        return -1;
    });
    const FAKE_IMPORT(_vscwprintf) failsToo([](const wchar_t*, va_list) {
        return -1;
    });
    TraceBuffer line = L"before";
    EXPECT_EQ(FormatTraceLine(line, L"%ls", L"text"), -1);
    EXPECT_STREQ(line, L"");
}

} // namespace
} // namespace kestraboot
