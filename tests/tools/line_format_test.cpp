#include "tools/trace/lines/line_format.h"

#include <gmock/gmock.h>

namespace kestraboot::tools
{
namespace
{

using testing::HasSubstr;

constexpr std::int64_t kMoment = 1'795'264'427'123; // 2026-11-21T12:33:47.123Z

SeenLine Seen(const std::string& text)
{
    return {{kMoment, 0, 0}, 1234, "kestraboot.exe", text};
}

StyledText Formatted(const std::string& text)
{
    return FormatLine(Seen(text), ParseTraceLine(text));
}

/// The styles of the parts after time and process, each with its text.
std::vector<std::pair<Style, std::string>> Styles(const std::string& text)
{
    std::vector<std::pair<Style, std::string>> styles;
    const StyledText formatted = Formatted(text);
    for (std::size_t i = 2; i < formatted.size(); ++i) {
        styles.emplace_back(formatted[i].style, formatted[i].text);
    }
    return styles;
}

using Parts = std::vector<std::pair<Style, std::string>>;

TEST(FormattedLine, BeginsWithTimeAndProcess)
{
    EXPECT_EQ(PlainText(Formatted("<KestraBoot><a>\n")),
              "12:33:47.123  kestraboot.exe        1234  <KestraBoot><a>");
}

TEST(FormattedLine, KeepsItsColumns)
{
    for (const char* const name :
         {"?", "a-very-long-program-name.exe", "12345678901234567\xC3\xA9.exe"}) {
        SeenLine seen = Seen("<x>");
        seen.processName = name;
        EXPECT_EQ(PlainText(FormatLine(seen, ParseTraceLine(seen.text))).find("<x>"), kLineColumn)
            << name;
    }
}

TEST(FormattedLine, CutsTheProcessNameAtAWholeCharacter)
{
    const auto shown = [](const std::string& name) {
        SeenLine seen = Seen("<x>");
        seen.processName = name;
        return PlainText(FormatLine(seen, ParseTraceLine(seen.text))).substr(14, 20);
    };
    EXPECT_EQ(shown("123456789012345678.exe"), "123456789012345678  ");
    EXPECT_EQ(shown("1234567890123456\xC3\xA9.exe"), "1234567890123456\xC3\xA9  ") << "18 bytes";
    EXPECT_EQ(shown("12345678901234567\xC3\xA9.exe"), "12345678901234567   ");
    EXPECT_EQ(shown("123456789012345\xF0\x9F\x93\xB7.exe"), "123456789012345     ");
}

TEST(FormattedLine, ColoursTagsAndMessage)
{
    EXPECT_EQ(Styles("<***DeviceConnect***><WiaTracker><WIA devices will be detected>."),
              (Parts{{Style::Component, "<***DeviceConnect***>"},
                     {Style::Tracker, "<WiaTracker>"},
                     {Style::Plain, "<WIA devices will be detected>."}}));
    EXPECT_EQ(
        Styles("<KestraBoot><!!! Unable to launch Kestra.>"),
        (Parts{{Style::Component, "<KestraBoot>"}, {Style::Bad, "<!!! Unable to launch Kestra.>"}}));
}

TEST(FormattedLine, ColoursLinesWithoutTags)
{
    EXPECT_EQ(Styles(R"("a.exe" module=kestrafetch params mode=direct)"),
              (Parts{{Style::Start, R"("a.exe" module=kestrafetch params mode=direct)"}}));
    EXPECT_EQ(Styles("Could not get the device type."),
              (Parts{{Style::Bad, "Could not get the device type."}}));
    EXPECT_EQ(Styles("<other><b>"), (Parts{{Style::Plain, "<other><b>"}}));
}

TEST(FormattedLine, StaysOneLineAndMovesNoCursor)
{
    EXPECT_THAT(PlainText(Formatted("one\ntwo\x1b[2J\tthree\n")), HasSubstr("  one two [2J three"));
}

TEST(FormattedLine, HasAJsonForm)
{
    const std::string text = "<***DeviceConnect***><VolumeTracker><REMOVABLE DEVICE><V|E:>";
    EXPECT_EQ(
        LineJson(Seen(text), ParseTraceLine(text)),
        R"({"type":"line","schema":1,"time":"2026-11-21T12:33:47.123+00:00","process":1234,)"
        R"("name":"kestraboot.exe",)"
        R"("component":"DeviceConnect","tracker":"VolumeTracker","message":"REMOVABLE DEVICE V|E:",)"
        R"("fields":["REMOVABLE DEVICE","V|E:"],"failure":false,"start":false,)"
        R"("line":"<***DeviceConnect***><VolumeTracker><REMOVABLE DEVICE><V|E:>"})");
    const std::string start = R"("C:\a.exe" module=kestrafetch params mode=direct)";
    EXPECT_THAT(LineJson(Seen(start), ParseTraceLine(start)),
                HasSubstr(R"("start":true,"line":"\"C:\\a.exe\" module=)"));
    const std::string failure = "<KestraBoot><!!! a>";
    EXPECT_THAT(LineJson(Seen(failure), ParseTraceLine(failure)), HasSubstr(R"("failure":true)"));
}

TEST(FormattedLine, IsValidJsonWhateverItHolds)
{
    const std::string text = "\"\\\t\x01\x7F \xFF \xC3";
    EXPECT_THAT(LineJson(Seen(text), ParseTraceLine(text)),
                HasSubstr("\"line\":\"\\\"\\\\\\t\\u0001\x7F \xEF\xBF\xBD \xEF\xBF\xBD\"}"));
}

TEST(FormattedLine, ReportsLostLines)
{
    EXPECT_EQ(PlainText(FormatLost({kMoment, 0, 0}, 7)),
              "12:33:47.123  (7 lines lost: they came faster than they could be shown)");
    EXPECT_EQ(LostJson({kMoment, 0, 0}, 7),
              R"({"type":"lost","schema":1,"time":"2026-11-21T12:33:47.123+00:00","lost":7})");
}

} // namespace
} // namespace kestraboot::tools
