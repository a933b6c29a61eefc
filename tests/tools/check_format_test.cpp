// The table of --check, as people and as machines read it.
#include "tests/tools/build_json.h"
#include "tools/ctl/check/check_format.h"

#include <gmock/gmock.h>

namespace kestraboot::tools
{
namespace
{

using testing::HasSubstr;

const Rows kRows = {Fine("windows", {}, L"this is Windows"),
                    Broken("control", L"B\u00fccher", L"is gone", L"bring it back"),
                    Suspicious("debug-output", {}, L"somebody reads", L"end it")};

TEST(CheckText, IsATableWithItsSums)
{
    EXPECT_EQ(PlainText(FormatCheck(kRows)), "fine        windows      this is Windows\r\n"
                                             "broken      control      B\xC3\xBC"
                                             "cher: is gone\r\n"
                                             "                         -> bring it back\r\n"
                                             "suspicious  debug-output somebody reads\r\n"
                                             "                         -> end it\r\n"
                                             "\r\n"
                                             "1 broken, 1 suspicious, 1 fine\r\n");
}

TEST(CheckText, LetsNoNameMoveTheCursor)
{
    const Rows rows = {Broken("plugin", L"a\r\n\x1b[2J", L"\tb", L"\x7F")};
    EXPECT_THAT(PlainText(FormatCheck(rows)), HasSubstr("a   [2J:  b\r\n"));
    EXPECT_THAT(PlainText(FormatCheck(rows)), HasSubstr("->  \r\n"));
}

TEST(CheckJson, ContainsTheSame)
{
    EXPECT_EQ(
        CheckJson(kRows),
        HeadJson("check") +
            R"("broken":1,"suspicious":1,"fine":1,"rows":[)"
            R"({"verdict":"fine","check":"windows","subject":null,"reason":"this is Windows","advice":null},)"
            R"({"verdict":"broken","check":"control","subject":"B)"
            "\xC3\xBC"
            R"(cher","reason":"is gone","advice":"bring it back"},)"
            R"({"verdict":"suspicious","check":"debug-output","subject":null,"reason":"somebody reads",)"
            R"("advice":"end it"}]})");
}

} // namespace
} // namespace kestraboot::tools
