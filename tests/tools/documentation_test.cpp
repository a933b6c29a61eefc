// docs/tools.md names every word that scripts can meet, and no others.
#include "tests/support/source_file.h"
#include "tests/tools/json_schema.h"
#include "tools/ctl/check/check_format.h"
#include "tools/ctl/left_out.h"
#include "tools/ctl/options.h"
#include "tools/ctl/report_format.h"
#include "tools/trace/arrivals/arrival_format.h"
#include "tools/trace/lines/line_format.h"
#include "tools/trace/options.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <regex>
#include <set>

namespace kestraboot::tools
{
namespace
{

using testing::Contains;
using testing::HasSubstr;

std::string Page()
{
    std::ifstream in(kestraboot::tests::SourceFile("docs/tools.md"), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::set<std::string> Matches(const std::string& text, const char* pattern)
{
    const std::regex expression(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match) {
        found.insert((*match)[1]);
    }
    return found;
}

/// The text between backquotes.
std::set<std::string> Words()
{
    return Matches(Page(), "`([^`]+)`");
}

void ExpectAllNamed(const std::string& json)
{
    const std::set<std::string> words = Words();
    const std::set<std::string> members = Matches(json, "[{,]\"([A-Za-z]+)\":");
    EXPECT_FALSE(members.empty());
    for (const std::string& member : members) {
        EXPECT_THAT(words, Contains(member));
    }
}

TEST(ToolsPage, NamesEveryMemberOfALine)
{
    ExpectAllNamed(LineJson({}, {}));
    ExpectAllNamed(LostJson({}, 1));
}

TEST(ToolsPage, NamesEveryMemberOfAnArrival)
{
    Arrival arrival;
    arrival.tracker = kVolumeTracker;
    arrival.decision = Decision::Accepted;
    arrival.outcome = kStarted;
    ExpectAllNamed(ArrivalJson(arrival));
    arrival.tracker = kPluginTracker;
    ExpectAllNamed(ArrivalJson(arrival));
}

TEST(ToolsPage, NamesEveryMemberOfTheReport)
{
    Report report;
    report.applications.emplace_back().info.FileFormats.push_back({L"jpg", L"Image"});
    report.leftOut.emplace_back().reasons.push_back({"", L""});
    report.next.emplace();
    report.autoRun = L"";
    report.organiser.emplace();
    ExpectAllNamed(ReportJson(report));
}

TEST(ToolsPage, NamesEveryMemberAndWordOfTheCheck)
{
    ExpectAllNamed(CheckJson({Fine("plugin", {}, {})}));
    const nlohmann::json schema = tests::ReadSchema(tests::SourceFile("docs/kestractl.schema.json"));
    const std::set<std::string> words = Words();
    for (const nlohmann::json& check : schema["$defs"]["row"]["properties"]["check"]["enum"]) {
        EXPECT_THAT(words, Contains(check.get<std::string>()));
    }
}

TEST(ToolsPage, NamesEveryRuleAndOutcome)
{
    const std::set<std::string> words = Words();
    for (const char* const word :
         {kSupportedFile, kImagingDevice, kTwainSource, kPluginReport, kNoDevice, kUnfitDrive,
          kSearchOff, kNoSupportedFile, kNothingListed, kNoDeviceType, kReasonNotSeen, kUnfinished,
          kStarted, kOutsideConsoleSession, kNoMode, kNoOwnApplication, kNoApplication,
          kOrganiserNotStarted, kNoStartSeen}) {
        EXPECT_THAT(words, Contains(word));
    }
}

TEST(ToolsPage, NamesEveryReason)
{
    ApplicationKey missing;
    ApplicationKey broken;
    broken.commandPath = broken.proxyPath = L"x";
    broken.nameInOtherCase = broken.belowAnother = broken.behindLongName = true;
    broken.autoLaunchOfUser = 1;
    const std::set<std::string> words = Words();
    for (const ApplicationKey& key : {missing, broken}) {
        for (const Reason& reason : WhyLeftOut(key)) {
            EXPECT_THAT(words, Contains(reason.code));
        }
    }
}

TEST(ToolsPage, NamesEveryOption)
{
    const std::string page = Page();
    for (const std::string& usage : {std::string(TraceHelp()), std::string(CtlUsage())}) {
        for (const std::string& option : Matches(usage, "(--[a-z-]+)")) {
            EXPECT_THAT(page, HasSubstr(option));
        }
    }
    EXPECT_THAT(page, HasSubstr("[--no-color] [--from FILE]... [seconds]"));
    for (const std::string_view tag : kTags) {
        EXPECT_THAT(page, HasSubstr('`' + std::string(tag) + '`'));
    }
}

} // namespace
} // namespace kestraboot::tools
