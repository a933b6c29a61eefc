#include "tools/trace/arrivals/arrival_format.h"

#include <gmock/gmock.h>

namespace kestraboot::tools
{
namespace
{

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

const std::string kIndent(42, ' ');

Arrival Card()
{
    Arrival arrival;
    arrival.noticed = {1'795'264'427'123, 0, 0};
    arrival.processId = 1234;
    arrival.processName = "kestraboot.exe";
    arrival.tracker = kVolumeTracker;
    arrival.source = "REMOVABLE DEVICE";
    arrival.kind = "volume";
    arrival.device = "E:";
    arrival.decision = Decision::Accepted;
    arrival.rule = kSupportedFile;
    arrival.attempts = 1;
    arrival.folders = 2;
    arrival.files = 1;
    arrival.deepestLevel = 3;
    arrival.file = "IMG_0001.JPG";
    arrival.outcome = kStarted;
    arrival.application = "C:\\v.exe";
    arrival.mode = "direct";
    arrival.startLine = "\"C:\\v.exe\" module=kestrafetch params mode=direct";
    arrival.millisecondsToEnd = 120;
    return arrival;
}

std::vector<std::string> Lines(const Arrival& arrival)
{
    std::vector<std::string> lines;
    for (const StyledText& line : FormatArrival(arrival)) {
        lines.push_back(PlainText(line));
    }
    return lines;
}

TEST(FormattedArrival, NamesTheDeviceTheReasonAndTheStartedApplication)
{
    EXPECT_THAT(Lines(Card()),
                ElementsAre("12:33:47.123  kestraboot.exe        1234  volume E: <VolumeTracker> "
                            "accepted: IMG_0001.JPG is of a supported format",
                            kIndent + "saw 2 folders and 1 file, attempts: 1",
                            kIndent + "started after 0.120 s: \"C:\\v.exe\" module=kestrafetch params "
                                      "mode=direct"));
}

TEST(FormattedArrival, SaysWhyNothingWasStarted)
{
    Arrival card = Card();
    card.outcome = kOutsideConsoleSession;
    EXPECT_EQ(Lines(card).back(),
              kIndent + "nothing started: the process is not in the active console session");
}

TEST(FormattedArrival, OfARefusedOneHasNoOutcome)
{
    Arrival card = Card();
    card.decision = Decision::Refused;
    card.rule = kSearchOff;
    EXPECT_THAT(Lines(card),
                ElementsAre(EndsWith("refused: \"SniffDepth\" is 0: cards are switched off"),
                            HasSubstr("saw ")));
    EXPECT_THAT(ArrivalJson(card), AllOf(HasSubstr(R"("accepted":false,"rule":"search-off")"),
                                         Not(HasSubstr("outcome")), Not(HasSubstr("startLine"))));
}

TEST(FormattedArrival, OfACardWithoutPicturesDoesNotSayThatAllOfItWasSearched)
{
    Arrival card = Card();
    card.decision = Decision::Refused;
    card.rule = kNoSupportedFile;
    EXPECT_THAT(Lines(card)[0], EndsWith("refused: no file of a supported format was found within the "
                                         "folder levels of \"SniffDepth\", or a folder could not be "
                                         "listed"));
}

TEST(FormattedArrival, OmitsASearchThatDidNotHappen)
{
    Arrival phone = Card();
    phone.tracker = kPluginTracker;
    phone.rule = kPluginReport;
    phone.kind = "mobile";
    phone.device = "phone 1";
    EXPECT_THAT(Lines(phone), ElementsAre(HasSubstr("mobile phone 1 <Plugin> accepted: "),
                                          HasSubstr("started after")));
    phone.plugins = {"Phones", "More"};
    EXPECT_THAT(ArrivalJson(phone),
                AllOf(Not(HasSubstr("attempts")), HasSubstr(R"("plugins":["Phones","More"],"source")")));
}

TEST(FormattedArrival, MayBeOfADeviceThatItsLineDoesNotName)
{
    Arrival device = Card();
    device.tracker = kWiaTracker;
    device.kind = device.device = "";
    device.decision = Decision::Refused;
    device.rule = kNoDeviceType;
    EXPECT_THAT(Lines(device), ElementsAre(HasSubstr("device (not named) <WiaTracker> refused: ")));
}

TEST(FormattedArrival, MayBeAStartWithoutADevice)
{
    Arrival start = Card();
    start.tracker = start.source = start.kind = start.device = "";
    start.rule = kNoDevice;
    EXPECT_THAT(Lines(start),
                ElementsAre(EndsWith("1234  start without a device: no line names one, as when the host "
                                     "starts an application by itself"),
                            HasSubstr("started after")));
}

TEST(FormattedArrival, MarksTheCommandLineAsThatOfAStart)
{
    const StyledText outcome = FormatArrival(Card()).back();
    ASSERT_EQ(outcome.size(), 2U);
    EXPECT_EQ(outcome[0].style, Style::Good);
    EXPECT_EQ(outcome[1].style, Style::Start);
    EXPECT_EQ(outcome[1].text, Card().startLine);
}

TEST(FormattedArrival, MayBeUndecided)
{
    Arrival card = Card();
    card.decision = Decision::Open;
    card.rule = kUnfinished;
    EXPECT_THAT(Lines(card)[0], HasSubstr("undecided: no further line came"));
    EXPECT_THAT(ArrivalJson(card), HasSubstr(R"("accepted":null)"));
}

TEST(FormattedArrival, HasAJsonForm)
{
    EXPECT_EQ(
        ArrivalJson(Card()),
        R"({"type":"arrival","schema":1,"time":"2026-11-21T12:33:47.123+00:00","process":1234,)"
        R"("name":"kestraboot.exe",)"
        R"("tracker":"VolumeTracker","source":"REMOVABLE DEVICE","kind":"volume","device":"E:",)"
        R"("accepted":true,"rule":"supported-file","why":"IMG_0001.JPG is of a supported format",)"
        R"("attempts":1,"folders":2,"files":1,"deepestLevel":3,"lastFile":"IMG_0001.JPG",)"
        R"("outcome":"started","outcomeText":"","application":"C:\\v.exe","mode":"direct",)"
        R"("startLine":"\"C:\\v.exe\" module=kestrafetch params mode=direct","milliseconds":120})");
}

TEST(FormattedArrival, HasWordsForEveryRuleAndOutcome)
{
    Arrival card = Card();
    for (const char* const rule : {kSupportedFile, kImagingDevice, kTwainSource, kPluginReport,
                                   kNoDevice, kUnfitDrive, kSearchOff, kNoSupportedFile, kNothingListed,
                                   kNoDeviceType, kNoApplication, kReasonNotSeen, kUnfinished}) {
        card.rule = rule;
        EXPECT_NE(WhyText(card), "") << rule;
    }
    for (const char* const outcome : {kOutsideConsoleSession, kNoMode, kNoOwnApplication, kNoApplication,
                                      kOrganiserNotStarted, kNoStartSeen}) {
        card.outcome = outcome;
        EXPECT_NE(OutcomeText(card), "") << outcome;
    }
}

} // namespace
} // namespace kestraboot::tools
