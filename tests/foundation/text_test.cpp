#include "foundation/text.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

TEST(Field, HoldsTextCutAt259CharactersAndAlwaysTerminated)
{
    struct {
        wchar_t field[kFieldCapacity];
        wchar_t guard;
    } memory = {};
    memory.guard = L'#';
    for (const std::size_t length : {0U, 1U, 259U, 260U, 261U, 32767U}) {
        std::wmemset(memory.field, L'?', kFieldCapacity);
        CopyToField(memory.field, std::wstring(length, L'f'));
        EXPECT_EQ(memory.field, std::wstring(length < 260 ? length : 259, L'f')) << length;
        EXPECT_EQ(memory.field[kFieldCapacity - 1], L'\0') << length;
        EXPECT_EQ(memory.guard, L'#') << length;
    }
}

TEST(Field, IsZeroAfterTheText)
{
    wchar_t field[8] = L"1234567";
    CopyToField(field, L"ab");
    EXPECT_EQ(std::wstring(field, 8), std::wstring(L"ab\0\0\0\0\0\0", 8));
}

int Sign(int difference)
{
    return (difference > 0) - (difference < 0);
}

TEST(CompareIgnoringCase, OrdersAsTheRuntimeDoes)
{
    const std::vector<std::wstring> texts = {
        L"",        L"j",       L"jp",      L"jpg",   L"JPG",   L"jpe",    L"jpeg", L"JPEG",
        L"jPgx",    L"[",       L"`",       L"@",     L"{",     L"a b",    L"A_b",  L"a\xC4",
        L"A\xE4",   L"\xE4",    L"\xC4",    L"\x7F",  L"j\x80", L"\x212A", L"k",    L"K\x212A",
        L"\x212Ak", L"z\xD800", L"Z\xDC00", L"\x130", L"i",     L"\xFFFF"};
    for (const std::wstring& left : texts) {
        for (const std::wstring& right : texts) {
            EXPECT_EQ(Sign(CompareIgnoringCase(left.c_str(), right.c_str())),
                      Sign(_wcsicmp(left.c_str(), right.c_str())))
                << testing::PrintToString(left) << " and " << testing::PrintToString(right);
        }
    }
}

TEST(EqualIgnoringCase, ComparesWholeStrings)
{
    EXPECT_TRUE(EqualIgnoringCase(L"C:\\Apps\\PROXY.EXE", L"c:\\apps\\proxy.exe"));
    EXPECT_TRUE(EqualIgnoringCase(L"", L""));
    EXPECT_FALSE(EqualIgnoringCase(L"volume", L"volumes"));
    EXPECT_FALSE(EqualIgnoringCase(L"volumes", L"volume"));
    EXPECT_FALSE(EqualIgnoringCase(L"", L" "));
}

TEST(JoinedPath, HasOneBackslashBetween)
{
    EXPECT_EQ(JoinPath(L"E:", L"DCIM"), L"E:\\DCIM");
    EXPECT_EQ(JoinPath(L"", L""), L"\\");
}

TEST(Quotes, GoAroundTextThatDoesNotBeginWithOne)
{
    EXPECT_EQ(QuoteUnlessQuoted(L"E:"), L"\"E:\"");
    EXPECT_EQ(QuoteUnlessQuoted(L""), L"\"\"");
    EXPECT_EQ(QuoteUnlessQuoted(L"ends with\""), L"\"ends with\"\"");
    EXPECT_EQ(QuoteUnlessQuoted(L"E:\\"), L"\"E:\\\"");
}

TEST(Quotes, AreNotAddedToTextThatBeginsWithOne)
{
    EXPECT_EQ(QuoteUnlessQuoted(L"\"a b\""), L"\"a b\"");
    EXPECT_EQ(QuoteUnlessQuoted(L"\"never closed"), L"\"never closed");
    EXPECT_EQ(QuoteUnlessQuoted(L"\""), L"\"");
}

} // namespace
} // namespace kestraboot
