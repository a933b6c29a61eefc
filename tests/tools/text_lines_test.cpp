// The lines of a log in every encoding, cut into pieces of every size.
#include "tools/trace/recording/text_lines.h"

#include <gmock/gmock.h>

namespace kestraboot::tools
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

std::string Latin(std::string_view text)
{
    std::string utf8;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        utf8 += byte < 0x80 ? std::string(1, character)
                            : std::string{static_cast<char>(0xC0 | byte >> 6),
                                          static_cast<char>(0x80 | (byte & 0x3F))};
    }
    return utf8;
}

struct Cut {
    std::vector<std::string> lines;
    bool inALine = false;
};

Cut CutUp(const std::string& bytes, std::size_t piece)
{
    Cut cut;
    TextLines lines(
        [&](std::string_view line) {
            cut.lines.emplace_back(line);
        },
        Latin);
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
        lines.Push(std::string_view(bytes).substr(at, piece));
    }
    cut.inALine = lines.End();
    return cut;
}

std::vector<std::string> LinesOf(const std::string& bytes)
{
    const std::vector<std::string> whole = CutUp(bytes, bytes.size() + 1).lines;
    for (std::size_t piece = 1; piece < 6; ++piece) {
        EXPECT_EQ(CutUp(bytes, piece).lines, whole) << piece;
    }
    return whole;
}

std::string Utf16(std::string_view ascii, bool littleEndian)
{
    std::string bytes;
    for (const char character : ascii) {
        bytes += littleEndian ? std::string{character, '\0'} : std::string{'\0', character};
    }
    return bytes;
}

TEST(TextLines, EndWithEitherLineEnd)
{
    EXPECT_THAT(LinesOf("one\r\ntwo\n\nthree\n"), ElementsAre("one", "two", "", "three"));
    EXPECT_THAT(LinesOf(""), IsEmpty());
    EXPECT_THAT(LinesOf("\n"), ElementsAre(""));
}

TEST(TextLines, ReportWhetherTheLastOneIsCut)
{
    EXPECT_THAT(LinesOf("one\ntw"), ElementsAre("one", "tw"));
    EXPECT_TRUE(CutUp("one\ntw", 3).inALine);
    EXPECT_FALSE(CutUp("one\n", 3).inALine);
    EXPECT_TRUE(CutUp("a", 1).inALine);
}

TEST(TextLines, AreUtf8WithAndWithoutItsMark)
{
    EXPECT_THAT(LinesOf("caf\xC3\xA9 \xF0\x9F\x93\xB7\n"), ElementsAre("caf\xC3\xA9 \xF0\x9F\x93\xB7"));
    EXPECT_THAT(LinesOf("\xEF\xBB\xBF"
                        "one\n"),
                ElementsAre("one"));
}

TEST(TextLines, AreAnsiIfTheyAreNotUtf8)
{
    EXPECT_THAT(
        LinesOf("caf\xE9\ncaf\xC3\xA9\n\xC3\n\xE2\x82\n\xC0\xAF\n"),
        ElementsAre("caf\xC3\xA9", "caf\xC3\xA9", "\xC3\x83", "\xC3\xA2\xC2\x82", "\xC3\x80\xC2\xAF"));
}

TEST(TextLines, AreUtf16OfEitherOrder)
{
    for (const bool little : {true, false}) {
        const std::string mark = little ? "\xFF\xFE" : "\xFE\xFF";
        const std::string text = Utf16("one\r\ntwo\n", little);
        EXPECT_THAT(LinesOf(mark + text), ElementsAre("one", "two")) << little;
        EXPECT_THAT(LinesOf(text), ElementsAre("one", "two")) << little;
        EXPECT_TRUE(CutUp(mark + Utf16("on", little), 3).inALine);
    }
    EXPECT_THAT(LinesOf("\xFF\xFE\x3D\xD8\xF7\xDC\x0A"), ElementsAre("\xF0\x9F\x93\xB7"))
        << "half a code unit at the end is dropped";
    EXPECT_THAT(LinesOf(std::string("\xFF\xFE\x3D\xD8\xF7\xDC\x0A\x00", 8)),
                ElementsAre("\xF0\x9F\x93\xB7"));
}

TEST(TextLines, AreCutIfTheyNeverEnd)
{
    const std::string endless(TextLines::kLongestLine + 100, 'x');
    EXPECT_THAT(CutUp(endless + "\nnext\n", 1000).lines,
                ElementsAre(endless.substr(0, TextLines::kLongestLine), "next"));
}

} // namespace
} // namespace kestraboot::tools
