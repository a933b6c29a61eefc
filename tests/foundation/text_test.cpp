#include "foundation/text.h"

#include <gtest/gtest.h>

namespace kestraboot
{
namespace
{

using Pieces = std::vector<std::wstring>;

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

TEST(Field, IsZeroBehindTheText)
{
    wchar_t field[8] = L"1234567";
    CopyToField(field, L"ab");
    EXPECT_EQ(std::wstring(field, 8), std::wstring(L"ab\0\0\0\0\0\0", 8));
}

TEST(EqualIgnoringCase, ComparesWholeStrings)
{
    EXPECT_TRUE(EqualIgnoringCase(L"C:\\Apps\\PROXY.EXE", L"c:\\apps\\proxy.exe"));
    EXPECT_TRUE(EqualIgnoringCase(L"", L""));
    EXPECT_FALSE(EqualIgnoringCase(L"volume", L"volumes"));
    EXPECT_FALSE(EqualIgnoringCase(L"volumes", L"volume"));
    EXPECT_FALSE(EqualIgnoringCase(L"", L" "));
}

TEST(SplitAtBlanks, KeepsTheOrderAndTheLastPiece)
{
    EXPECT_EQ(SplitAtBlanks(L"wma mp3 wav"), (Pieces{L"wma", L"mp3", L"wav"}));
    EXPECT_EQ(SplitAtBlanks(L"one"), (Pieces{L"one"}));
}

TEST(SplitAtBlanks, LeavesOutEmptyPieces)
{
    EXPECT_EQ(SplitAtBlanks(L" jpg  tif "), (Pieces{L"jpg", L"tif"}));
    EXPECT_EQ(SplitAtBlanks(L""), Pieces{});
    EXPECT_EQ(SplitAtBlanks(L"   "), Pieces{});
}

TEST(SplitAtBlanks, TrimsNothingElse)
{
    EXPECT_EQ(SplitAtBlanks(L".JPG,\ttif jpg jpg"), (Pieces{L".JPG,\ttif", L"jpg", L"jpg"}));
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
