#include "tools/trace/lines/line_filter.h"

#include <gtest/gtest.h>

namespace kestraboot::tools
{
namespace
{

bool Passes(const std::vector<std::string>& tags, const std::string& line)
{
    return LineFilter({tags, {}, {}}).PassesTags(ParseTraceLine(line));
}

TEST(LineFilter, PassesEverythingWithoutACondition)
{
    const LineFilter filter({});
    EXPECT_TRUE(filter.PassesTags(ParseTraceLine("a line of another program")));
    EXPECT_TRUE(filter.PassesProcess(1, "?"));
    EXPECT_TRUE(filter.PassesText(""));
}

TEST(LineFilter, SelectsByComponentOrTracker)
{
    const std::vector<std::string> tags = {"VolumeTracker", "KestraBoot"};
    EXPECT_TRUE(Passes(tags, "<***DeviceConnect***><VolumeTracker><a>"));
    EXPECT_TRUE(Passes(tags, "<KestraBoot><a>"));
    EXPECT_FALSE(Passes(tags, "<***DeviceConnect***><WiaTracker><a>"));
    EXPECT_FALSE(Passes(tags, "<KestraProxy><a>"));
    EXPECT_FALSE(Passes(tags, "a line of another program"));
}

TEST(LineFilter, AcceptsTagsInTheFormOfALineAndInAnyCase)
{
    EXPECT_TRUE(Passes({"<***DeviceConnect***>"}, "<***DeviceConnect***><NOKIA Devices>"));
    EXPECT_TRUE(Passes({"volumetracker"}, "<***DeviceConnect***><VolumeTracker><a>"));
    EXPECT_TRUE(Passes({"KESTRABOOT"}, "<KestraBoot><a>"));
}

TEST(LineFilter, MatchesWholeTags)
{
    EXPECT_FALSE(Passes({"KestraProxy"}, "<KestraProxy:OEM><a>"));
    EXPECT_FALSE(Passes({"Volume"}, "<***DeviceConnect***><VolumeTracker><a>"));
    EXPECT_FALSE(Passes({"***"}, "<***DeviceConnect***><a>"));
}

TEST(LineFilter, ShowsTheSearchOfACardWithItsTracker)
{
    for (const char* const line :
         {"<***DeviceConnect***><2><FOLDER><E:\\DCIM>\n",
          "<***DeviceConnect***><3><FILE><IMG_0001.JPG>\n",
          "<***DeviceConnect***><Suppressing auto launch...>",
          "<***DeviceConnect***><Unsupported volume found.>",
          "<***DeviceConnect***><Supported file format is found on device.>",
          "<***DeviceConnect***><Supported media content check fails...Trying again.>",
          "<***DeviceConnect***><Volume does not contain supported media content.>"}) {
        EXPECT_TRUE(Passes({"VolumeTracker"}, line)) << line;
        EXPECT_TRUE(Passes({"DeviceConnect"}, line)) << line;
        EXPECT_FALSE(Passes({"WiaTracker"}, line)) << line;
    }
    EXPECT_FALSE(
        Passes({"VolumeTracker"}, "<***DeviceConnect***><NOKIA Devices will not be detected.>"));
    EXPECT_FALSE(Passes({"VolumeTracker"}, "<***DeviceConnect***><Phones><Devices will be detected.>"));
}

TEST(LineFilter, KnowsAPluginByItsName)
{
    const std::string served = "<***DeviceConnect***><Sample phones><Devices will be detected.>";
    EXPECT_TRUE(Passes({"Plugin"}, served));
    EXPECT_TRUE(Passes({"plugin:sample PHONES"}, served));
    EXPECT_FALSE(Passes({"Plugin:Other phones"}, served));
    EXPECT_FALSE(Passes({"Plugin"}, "<***DeviceConnect***><WiaTracker><a>"));
    const std::vector<std::string> two = {"Sample phones", "Other"};
    EXPECT_TRUE(LineFilter({{"Plugin:Other"}, {}, {}}).PassesTags("DeviceConnect", "Plugin", two));
    EXPECT_FALSE(LineFilter({{"Plugin:Third"}, {}, {}}).PassesTags("DeviceConnect", "Plugin", two));
}

TEST(LineFilter, ListsTheExistingTags)
{
    for (const std::string_view tag : kTags) {
        EXPECT_TRUE(IsTag(tag)) << tag;
    }
    EXPECT_TRUE(IsTag("<***deviceconnect***>"));
    EXPECT_TRUE(IsTag("Plugin:Sample phones"));
    for (const char* const tag : {"", "***", "Volume", "VolumeTraker", "Plugin:", "Sample phones"}) {
        EXPECT_FALSE(IsTag(tag)) << tag;
    }
    EXPECT_EQ(kTags[kFirstTracker], "VolumeTracker");
}

TEST(LineFilter, SelectsAProcessByNumberOrName)
{
    const LineFilter filter({{}, {"556", "KestraBoot.exe", "viewer"}, {}});
    EXPECT_TRUE(filter.PassesProcess(556, "?"));
    EXPECT_TRUE(filter.PassesProcess(1, "kestraboot.EXE"));
    EXPECT_TRUE(filter.PassesProcess(1, "Viewer.exe"));
    EXPECT_FALSE(filter.PassesProcess(55, "boot.exe"));
    EXPECT_FALSE(filter.PassesProcess(5560, "?"));
}

TEST(LineFilter, SelectsATextInLettersOfEitherCase)
{
    const LineFilter filter({{}, {}, "img_"});
    EXPECT_TRUE(filter.PassesText("<3><FILE><IMG_0001.JPG>"));
    EXPECT_FALSE(filter.PassesText("<3><FILE><IM_G>"));
    EXPECT_FALSE(filter.PassesText(""));
}

} // namespace
} // namespace kestraboot::tools
