#include "tools/trace/lines/tag_filter.h"

#include <gtest/gtest.h>

namespace kestraboot::tools
{
namespace
{

TEST(TagFilter, PassesEverythingWhereNothingIsWanted)
{
    EXPECT_TRUE(TagFilter({}).Passes("", ""));
    EXPECT_TRUE(TagFilter({}).Passes("KestraBoot", ""));
}

TEST(TagFilter, WantsComponentOrTracker)
{
    const TagFilter filter({"VolumeTracker", "KestraBoot"});
    EXPECT_TRUE(filter.Passes("DeviceConnect", "VolumeTracker"));
    EXPECT_TRUE(filter.Passes("KestraBoot", ""));
    EXPECT_FALSE(filter.Passes("DeviceConnect", "WiaTracker"));
    EXPECT_FALSE(filter.Passes("KestraProxy", ""));
    EXPECT_FALSE(filter.Passes("", "")) << "a line of another program";
}

TEST(TagFilter, TakesTagsAsTheyStandInALineAndInAnyCase)
{
    EXPECT_TRUE(TagFilter({"<***DeviceConnect***>"}).Passes("DeviceConnect", ""));
    EXPECT_TRUE(TagFilter({"volumetracker"}).Passes("DeviceConnect", "VolumeTracker"));
    EXPECT_TRUE(TagFilter({"KESTRABOOT"}).Passes("KestraBoot", ""));
}

TEST(TagFilter, WantsWholeTags)
{
    EXPECT_FALSE(TagFilter({"KestraProxy"}).Passes("KestraProxy:OEM", ""));
    EXPECT_FALSE(TagFilter({"Volume"}).Passes("DeviceConnect", "VolumeTracker"));
    EXPECT_FALSE(TagFilter({"***"}).Passes("DeviceConnect", ""));
}

} // namespace
} // namespace kestraboot::tools
