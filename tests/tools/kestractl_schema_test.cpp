// docs/kestractl.schema.json describes the output of kestractl for programs.
#include "tests/support/source_file.h"
#include "tests/tools/build_json.h"
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
    const std::string head = HeadJson("check");
    std::string anotherSchema = head;
    anotherSchema.replace(anotherSchema.find(":1,"), 3, ":2,");
    std::string noCommit = head;
    noCommit.replace(noCommit.find("commit\":\"") + 9, 1, "?");
    const std::string rest = R"("broken":0,"suspicious":0,"fine":0,"rows":[]})";
    ASSERT_EQ(Wrong(head + rest), "");
    for (const std::string& line :
         {head.substr(0, head.size() - 1) + "}", std::string("[]"), anotherSchema + rest,
          noCommit + rest, R"({"type":"check","schema":1,)" + rest,
          head + R"("broken":0,"suspicious":0,"fine":0,"rows":[],"more":1})",
          head + R"("broken":"0","suspicious":0,"fine":0,"rows":[]})"}) {
        EXPECT_NE(Wrong(line), "") << line;
    }
}

} // namespace
} // namespace kestraboot::tools
