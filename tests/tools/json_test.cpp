#include "tools/common/json.h"

#include <gtest/gtest.h>

namespace kestraboot::tools
{
namespace
{

TEST(Json, EscapesWhatWouldEndOrBreakAText)
{
    EXPECT_EQ(JsonText(R"(C:\Apps\"a")"), R"("C:\\Apps\\\"a\"")");
    EXPECT_EQ(JsonText("one\r\ntwo\t"), R"("one\r\ntwo\t")");
    EXPECT_EQ(JsonText(std::string_view("\0\x1b\x1f\x7f", 4)), R"("\u0000\u001b\u001f\u007f")");
}

TEST(Json, LeavesOtherCharactersAlone)
{
    EXPECT_EQ(JsonText("/<'\xC3\xA9>"), "\"/<'\xC3\xA9>\"");
}

TEST(Json, KeepsMembersInOrderOnOneLine)
{
    JsonObject object;
    object.Text("a\"", "x\ny").Number("n", -5).Flag("yes", true).Flag("no", false).Null("nothing");
    object.Json("list", JsonArray({"1", "\"b\""}));
    EXPECT_EQ(object.Line(),
              R"({"a\"":"x\ny","n":-5,"yes":true,"no":false,"nothing":null,"list":[1,"b"]})");
}

TEST(Json, WritesEmptyObjectsAndArrays)
{
    EXPECT_EQ(JsonObject().Line(), "{}");
    EXPECT_EQ(JsonArray({}), "[]");
}

} // namespace
} // namespace kestraboot::tools
