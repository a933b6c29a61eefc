// The report of kestractl, as people and as machines read it.
#include "tests/tools/build_json.h"
#include "tools/ctl/report_format.h"

#include <gmock/gmock.h>

namespace kestraboot::tools
{
namespace
{

using testing::HasSubstr;
using testing::Not;

ListedApplication Viewer()
{
    ListedApplication viewer;
    viewer.info.Name = L"View\u00e9r";
    viewer.info.KeyPath = L"SOFTWARE\\Corvane\\Viewer\\Corvane Kestrafetch";
    viewer.info.CmdLine = L"C:\\Viewer\\viewer.exe";
    viewer.info.ProxyPath = L"C:\\Viewer\\kestraboot.exe";
    viewer.info.DefaultFlag = 1;
    viewer.info.FileFormats = {{L"jpg", L"Image"}, {L"tif", L"Image"}, {L"mov", L"Video"}};
    viewer.locale = L"de_de";
    viewer.localeStored = true;
    return viewer;
}

Report Full()
{
    Report report;
    report.applications = {Viewer()};
    report.defaults = {L"View\u00e9r"};
    LeftOutApplication left;
    left.key.path = L"SOFTWARE\\Corvane\\Old\\Corvane Kestrafetch";
    left.key.name = L"Old";
    left.key.commandPath = L"C:\\old.exe";
    left.reasons = {{"no-application-file", L"it is gone"}};
    report.leftOut = {left};
    report.next = report.nextOfCard = NextLaunch{L"View\u00e9r", L"direct"};
    report.autoRun = L"\"C:\\Viewer\\kestraboot.exe\"";
    report.autoRunExists = true;
    report.autoRunApplication = L"View\u00e9r";
    return report;
}

TEST(ReportText, ShowsEverything)
{
    EXPECT_EQ(PlainText(FormatReport(Full())),
              "Applications, in the library's order\r\n"
              "  1. View\xC3\xA9r  [default]\r\n"
              "     key            SOFTWARE\\Corvane\\Viewer\\Corvane Kestrafetch\r\n"
              "     application    C:\\Viewer\\viewer.exe\r\n"
              "     proxy          C:\\Viewer\\kestraboot.exe\r\n"
              "     formats        Image: jpg tif\r\n"
              "                    Video: mov\r\n"
              "     launch status  may launch\r\n"
              "     locale         de_de\r\n"
              "\r\n"
              "Registered, but left out\r\n"
              "   - Old\r\n"
              "     key            SOFTWARE\\Corvane\\Old\\Corvane Kestrafetch\r\n"
              "     why            it is gone\r\n"
              "\r\n"
              "Defaults    View\xC3\xA9r\r\n"
              "An arrival  starts View\xC3\xA9r in mode direct\r\n"
              "Auto-run    \"C:\\Viewer\\kestraboot.exe\"\r\n"
              "            the proxy of View\xC3\xA9r\r\n"
              "Organiser   (not installed)\r\n");
}

TEST(ReportText, NamesTheMissingThings)
{
    const std::string text = PlainText(FormatReport({}));
    EXPECT_THAT(text, HasSubstr("  (none: a boot program that finds this ends, and removes the auto-run "
                                "entry if it may write to HKEY_LOCAL_MACHINE)"));
    EXPECT_THAT(text, HasSubstr("Defaults    (none)"));
    EXPECT_THAT(text, HasSubstr("An arrival  starts nothing"));
    EXPECT_THAT(text, HasSubstr("Auto-run    (no entry: nothing starts at log-on)"));
    EXPECT_THAT(text, Not(HasSubstr("left out")));
}

TEST(ReportText, NamesTheFaultOfTheEntry)
{
    Report report = Full();
    report.autoRunApplication.reset();
    EXPECT_THAT(PlainText(FormatReport(report)), HasSubstr("the proxy of no listed application"));
    report.autoRunExists = false;
    EXPECT_THAT(PlainText(FormatReport(report)), HasSubstr("a file that does not exist"));
}

TEST(ReportText, NamesTheSettingThatExcludesAnApplication)
{
    Report report = Full();
    report.applications[0].mayLaunch = false;
    report.applications[0].key.sniffDepth = 0;
    report.applications[0].localeStored = false;
    report.applications[0].locale = L"en_us";
    const std::string text = PlainText(FormatReport(report));
    EXPECT_THAT(text, HasSubstr("may not launch"));
    EXPECT_THAT(text, HasSubstr("0 (cards are switched off)"));
    EXPECT_THAT(text, HasSubstr("en_us (none is set)"));
}

TEST(ReportText, ShowsIfACardStartsAnotherApplication)
{
    Report report = Full();
    report.nextOfCard = NextLaunch{L"Other", L"select"};
    EXPECT_THAT(PlainText(FormatReport(report)),
                HasSubstr("in mode direct\r\nA card      starts Other in mode select\r\n"));
    EXPECT_THAT(PlainText(FormatReport(Full())), Not(HasSubstr("A card")));
}

TEST(ReportText, LetsNoNameMoveTheCursor)
{
    Report report = Full();
    report.applications[0].info.Name = L"a\r\n\x1b[2J";
    EXPECT_THAT(PlainText(FormatReport(report)), HasSubstr("  1. a   [2J  [default]\r\n"));
}

TEST(ReportJson, ContainsEverything)
{
    EXPECT_EQ(
        ReportJson(Full()),
        HeadJson("report") +
            R"("applications":[{"name":")"
            "View\xC3\xA9r"
            R"(","application":"C:\\Viewer\\viewer.exe","proxy":"C:\\Viewer\\kestraboot.exe",)"
            R"("description":"","icon":"","formats":[{"extension":"jpg","mediaType":"Image"},)"
            R"({"extension":"tif","mediaType":"Image"},{"extension":"mov","mediaType":"Video"}],)"
            R"("key":"SOFTWARE\\Corvane\\Viewer\\Corvane Kestrafetch","default":true,"mayLaunch":true,)"
            R"("locale":"de_de","localeSet":true,"sniffDepth":null}],)"
            R"("leftOut":[{"name":"Old","key":"SOFTWARE\\Corvane\\Old\\Corvane Kestrafetch",)"
            R"("application":"C:\\old.exe","applicationExists":false,"proxy":null,"proxyExists":false,)"
            R"("reasons":[{"reason":"no-application-file","text":"it is gone"}]}],"defaults":[")"
            "View\xC3\xA9r"
            R"("],"arrivalStarts":{"application":")"
            "View\xC3\xA9r"
            R"(","mode":"direct"},"cardStarts":{"application":")"
            "View\xC3\xA9r"
            R"(","mode":"direct"},"autoRun":{"entry":"\"C:\\Viewer\\kestraboot.exe\"","exists":true,)"
            R"("application":")"
            "View\xC3\xA9r"
            R"("},"organiser":null})");
}

TEST(ReportJson, ContainsTheMissingThings)
{
    EXPECT_EQ(ReportJson({}), HeadJson("report") + R"("applications":[],"leftOut":[],"defaults":[],)"
                                                   R"("arrivalStarts":null,"cardStarts":null,)"
                                                   R"("autoRun":null,"organiser":null})");
}

TEST(ReportJson, ContainsTheOrganiser)
{
    Report report;
    report.organiser.emplace().Name = L"Organiser";
    EXPECT_THAT(ReportJson(report), HasSubstr(R"("organiser":{"name":"Organiser","application":"",)"));
}

} // namespace
} // namespace kestraboot::tools
