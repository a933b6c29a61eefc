// docs/kestractl.schema.json describes what kestractl writes for programs.
#include "tests/support/source_file.h"
#include "tests/tools/json_schema.h"
#include "tools/ctl/check/check_format.h"
#include "tools/ctl/report_format.h"

#include <gmock/gmock.h>

namespace kestraboot::tools
{
namespace
{

using nlohmann::json;
using testing::HasSubstr;
using tests::AgainstSchema;

const json& Schema()
{
    static const json schema = tests::ReadSchema(tests::SourceFile("docs/kestractl.schema.json"));
    return schema;
}

std::string Wrong(const std::string& line)
{
    return AgainstSchema(Schema(), json::parse(line));
}

TEST(KestractlSchema, DescribesTheReport)
{
    Report report;
    EXPECT_EQ(Wrong(ReportJson(report)), "");
    report.applications.emplace_back().info.FileFormats.push_back({L"jpg", L"Image"});
    report.applications[0].key.sniffDepth = 2;
    LeftOutApplication left;
    left.reasons = WhyLeftOut(left.key);
    report.leftOut = {left};
    report.next = report.nextOfCard = NextLaunch{L"A", L"direct"};
    report.autoRun = L"x";
    report.organiser.emplace();
    EXPECT_EQ(Wrong(ReportJson(report)), "");
}

TEST(KestractlSchema, DescribesTheCheck)
{
    EXPECT_EQ(Wrong(CheckJson({})), "");
    EXPECT_EQ(Wrong(CheckJson({Fine("plugin", L"a.mox", L"is well"),
                               Broken("control", {}, L"there is none", L"log on")})),
              "");
}

TEST(KestractlSchema, RefusesWhatItDoesNotDescribe)
{
    EXPECT_THAT(Wrong(CheckJson({Fine("sun", {}, {})})), HasSubstr("it.rows[0].check is \"sun\""));
    for (const char* const line :
         {R"({"type":"check"})", R"([])",
          R"({"type":"check","schema":2,"broken":0,"suspicious":0,"fine":0,"rows":[]})",
          R"({"type":"check","schema":1,"broken":0,"suspicious":0,"fine":0,"rows":[],"more":1})",
          R"({"type":"check","schema":1,"broken":"0","suspicious":0,"fine":0,"rows":[]})"}) {
        EXPECT_NE(Wrong(line), "") << line;
    }
}

} // namespace
} // namespace kestraboot::tools
