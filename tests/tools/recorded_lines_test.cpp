// The parts of a recording's lines, line by line.
#include "tools/trace/recording/recorded_lines.h"

#include "tools/trace/lines/line_format.h"

#include <gmock/gmock.h>

namespace kestraboot::tools
{
namespace
{

constexpr std::int64_t kDay = 20'778; // 2026-11-21
constexpr std::int64_t kMidnight = kDay * 86'400'000;
constexpr std::int64_t kClock = ((13 * 60 + 26) * 60 + 59) * 1000 + 994;

int AnHourAhead(std::int64_t /*local*/)
{
    return 60;
}

class Recorded : public testing::Test
{
protected:
    SeenLine Line(const std::string& text)
    {
        const RecordedLine read = lines.Read(text);
        const auto* const seen = std::get_if<SeenLine>(&read);
        EXPECT_NE(seen, nullptr) << text;
        return seen != nullptr ? *seen : SeenLine();
    }

    /// Local, since that day's midnight.
    std::int64_t ClockOf(const std::string& text)
    {
        const SeenLine seen = Line(text);
        EXPECT_EQ(seen.time.offsetMinutes, 60);
        EXPECT_EQ(seen.time.upMilliseconds, seen.time.utcMilliseconds);
        return seen.time.utcMilliseconds + 60 * 60'000 - kMidnight;
    }

    void ExpectNone(const std::string& text)
    {
        EXPECT_TRUE(std::holds_alternative<NotRecorded>(lines.Read(text))) << text;
    }

    RecordedLines lines{kDay, AnHourAhead};
};

/// One of each kind that kestratrace writes.
std::vector<SeenLine> Samples()
{
    std::vector<SeenLine> samples;
    for (const char* const text :
         {"<***DeviceConnect***><VolumeTracker><REMOVABLE DEVICE><V|E:>", "", "  blanks  ",
          R"("C:\a b.exe" module=kestrafetch params mode=direct devType=volume priDevId="E:")",
          "caf\xC3\xA9", "(7 lines lost: not so)", "-- 2026-11-21", "{\"a\":1}"}) {
        samples.push_back({{kMidnight + kClock - 3'600'000, 60, 0}, 4'294'967'295, "a b.exe", text});
        samples.push_back({{kMidnight + kClock - 3'600'000, 60, 0}, 0, "?", text});
    }
    return samples;
}

void ExpectSame(const SeenLine& read, const SeenLine& written)
{
    EXPECT_EQ(read.time.utcMilliseconds, written.time.utcMilliseconds);
    EXPECT_EQ(read.time.offsetMinutes, written.time.offsetMinutes);
    EXPECT_EQ(read.processId, written.processId);
    EXPECT_EQ(read.processName, written.processName);
    EXPECT_EQ(read.text, written.text);
}

TEST_F(Recorded, IsTheLineThatWasWrittenAsText)
{
    for (const SeenLine& written : Samples()) {
        ExpectSame(Line(PlainText(FormatLine(written, ParseTraceLine(written.text)))), written);
    }
}

TEST_F(Recorded, IsTheLineThatWasWrittenAsJson)
{
    for (const SeenLine& written : Samples()) {
        ExpectSame(Line(LineJson(written, ParseTraceLine(written.text))), written);
    }
}

TEST_F(Recorded, ReportsLostLines)
{
    const TimeStamp time = {kMidnight + kClock - 3'600'000, 60, 0};
    for (const std::string& text : {PlainText(FormatLost(time, 12)), LostJson(time, 12)}) {
        const RecordedLine read = lines.Read(text);
        const auto* const loss = std::get_if<RecordedLoss>(&read);
        ASSERT_NE(loss, nullptr) << text;
        EXPECT_EQ(loss->lines, 12U);
        EXPECT_EQ(loss->time.utcMilliseconds, time.utcMilliseconds);
    }
}

TEST_F(Recorded, HasTheDayOfTheHeadingAbove)
{
    const std::string line = "13:26:59.994  a.exe                   1  x";
    EXPECT_EQ(ClockOf(line), kClock) << "the file's own day";
    EXPECT_TRUE(std::holds_alternative<RecordedDay>(lines.Read("-- 2026-11-23")));
    EXPECT_EQ(ClockOf(line), kClock + 2 * 86'400'000);
    ExpectNone("-- 2026-02-30");
    ExpectNone("-- soon");
}

TEST_F(Recorded, ContinuesPastMidnight)
{
    EXPECT_EQ(ClockOf("00000001\t11:59:59 PM\t[1] x"), 86'399'000);
    EXPECT_EQ(ClockOf("00000002\t12:00:01 AM\t[1] x"), 86'401'000);
    EXPECT_EQ(ClockOf("00000003\t12:00:00 AM\t[1] a little out of order"), 86'400'000);
}

TEST_F(Recorded, MayBeAnotherViewers)
{
    for (const char* const text :
         {"00000012\t13:26:59.994\t[556] <x>\ty", "12\t1:26:59.994 PM\t[556]<x>\ty",
          "13:26:59.994\t[556] <x>\ty", "12\t2026-11-21 13:26:59,9941\t556\t<x>\ty",
          "12\t48419.99400000\t[556] <x>\ty"}) {
        EXPECT_EQ(ClockOf(text), kClock) << text;
        const SeenLine seen = Line(text);
        EXPECT_EQ(seen.processId, 556U) << text;
        EXPECT_EQ(seen.processName, "?") << text;
        EXPECT_EQ(seen.text, "<x>\ty") << text;
    }
    for (const char* const text :
         {"12\t13:26:59\tkestraboot.exe [556]\t<x>", "12\t13:26:59\tkestraboot.exe (556)\t<x>",
          "12\t13:26:59\t556\tkestraboot.exe\t<x>", "13:26:59\tkestraboot.exe\t556\t<x>"}) {
        const SeenLine seen = Line(text);
        EXPECT_EQ(seen.processId, 556U) << text;
        EXPECT_EQ(seen.processName, "kestraboot.exe") << text;
        EXPECT_EQ(seen.text, "<x>") << text;
    }
    EXPECT_EQ(Line("12\t13:26:59\tno process").text, "no process");
}

TEST_F(Recorded, IsNoOtherText)
{
    for (const char* const text :
         {"a message of something else", "", "13:26:59.994", "13:26:59.994  a.exe",
          "25:26:59.994  a.exe  1  x", "13:26:59.994  a.exe                   x  y",
          "13:26:59.994  a.exe                   1",
          "                                          saw 2 folders and 1 file, attempts: 1", "a\tb\tc",
          "12\t13:61:59\t[1] x", "12\t13 PM\t[1] x", "12\t13:26:59 PM\t[1] x", "12\t99999999999\tx"}) {
        ExpectNone(text);
    }
}

TEST_F(Recorded, IsNoBrokenJson)
{
    const SeenLine written = Samples()[0];
    const std::string whole = LineJson(written, ParseTraceLine(written.text));
    for (std::size_t length = 1; length < whole.size(); ++length) {
        ExpectNone(whole.substr(0, length));
    }
    for (const char* const text :
         {"{}", "{\"time\":\"2026-11-21T13:26:59.994+01:00\"}", "{\"lost\":3}",
          R"({"schema":2,"time":"2026-11-21T13:26:59.994+01:00","lost":3})",
          R"({"time":"2026-11-21T13:26:59.994*01:00","lost":3})",
          R"({"time":"2026-11-21 13:26:59.994","lost":3})",
          R"({"type":"line","time":"2026-11-21T13:26:59.994+01:00","process":-1,"name":"a","line":"x"})",
          R"({"type":"line","time":"2026-11-21T13:26:59.994+01:00","process":1,"name":2,"line":"x"})"}) {
        ExpectNone(text);
    }
}

} // namespace
} // namespace kestraboot::tools
