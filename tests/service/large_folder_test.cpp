// A real folder of 20,000 files.
#include "service/media_walk.h"
#include "tests/support/trace_recorder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

namespace kestraboot
{
namespace
{

class LargeFolder : public testing::Test
{
protected:
    bool Find(const wchar_t* extension)
    {
        return FindSupportedFile(folder.c_str(), 4,
                                 ExtensionSet(std::vector<formatInfo_tag>{{extension, L"Image"}}));
    }

    const std::filesystem::path folder = std::filesystem::path(KESTRABOOT_LARGE_FOLDER).make_preferred();
    tests::TraceRecorder trace;
};

TEST_F(LargeFolder, IsWalkedToTheEndWhereNothingMatches)
{
    EXPECT_FALSE(Find(L"png"));
    EXPECT_EQ(trace.Lines().size(), 20'000U);
}

TEST_F(LargeFolder, GivesTheOnePictureAmongItsFiles)
{
    EXPECT_TRUE(Find(L"jpg"));
    EXPECT_EQ(trace.Lines().back(), L"<***DeviceConnect***><Supported file format is found on device.>");
    EXPECT_EQ(trace.Count(L"<***DeviceConnect***><1><FILE><zzz.jpg>\n"), 1);
}

} // namespace
} // namespace kestraboot
