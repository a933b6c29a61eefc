#include "tools/common/utf8.h"

#include <gtest/gtest.h>

namespace kestraboot::tools
{
namespace
{

TEST(Utf8, TakesOneToFourBytesForACharacter)
{
    EXPECT_EQ(ToUtf8(L"a"), "a");
    EXPECT_EQ(ToUtf8(L"\u00e9"), "\xC3\xA9");
    EXPECT_EQ(ToUtf8(L"\u20ac"), "\xE2\x82\xAC");
    EXPECT_EQ(ToUtf8(L"\U0001F4F7"), "\xF0\x9F\x93\xB7");
}

TEST(Utf8, StaysValidIfASurrogateIsAlone)
{
    EXPECT_EQ(ToUtf8(std::wstring{L'a', wchar_t(0xD83D)}), "a\xEF\xBF\xBD");
    EXPECT_EQ(ToUtf8(std::wstring{wchar_t(0xD83D), L'a'}), "\xEF\xBF\xBD"
                                                           "a");
    EXPECT_EQ(ToUtf8(std::wstring{wchar_t(0xDCF7), wchar_t(0xD83D)}), "\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Utf8, DoesNotReadPastTheEnd)
{
    EXPECT_EQ(ToUtf8(std::wstring_view(L"\U0001F4F7").substr(0, 1)), "\xEF\xBF\xBD");
}

TEST(Utf8, KeepsZerosAndBounds)
{
    EXPECT_EQ(ToUtf8(std::wstring_view(L"a\0b", 3)), std::string("a\0b", 3));
    EXPECT_EQ(ToUtf8(L"\x7f\x80\x7ff\x800\xffff"), "\x7f\xC2\x80\xDF\xBF\xE0\xA0\x80\xEF\xBF\xBF");
}

} // namespace
} // namespace kestraboot::tools
