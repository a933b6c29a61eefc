// A real folder of 20,000 files.
#include "service/media_walk.h"
#include "tests/support/source_file.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trace_recorder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace kestraboot
{
namespace
{

constexpr int kFiles = 20'000;

class LargeFolder : public testing::Test
{
protected:
    /// Under Wine the build makes the folder, because Wine takes minutes for it. On Windows the test
    /// makes it here.
    static void SetUpTestSuite()
    {
        if (!tests::FromTheArchive()) {
            return;
        }
        made = std::make_unique<tests::TempFolder>();
        for (int number = 1; number < kFiles; ++number) {
            made->AddFile("note" + std::to_string(number) + ".txt");
        }
        made->AddFile("zzz.jpg");
    }
    static void TearDownTestSuite() { made.reset(); }

    bool Find(const wchar_t* extension)
    {
        return FindSupportedFile(folder.c_str(), 4,
                                 ExtensionSet(std::vector<formatInfo_tag>{{extension, L"Image"}}));
    }

    static std::unique_ptr<tests::TempFolder> made;
    const std::filesystem::path folder =
        made ? made->Path() : std::filesystem::path(KESTRABOOT_LARGE_FOLDER).make_preferred();
    tests::TraceRecorder trace;
};

std::unique_ptr<tests::TempFolder> LargeFolder::made;

TEST_F(LargeFolder, IsWalkedToTheEndIfNothingMatches)
{
    EXPECT_FALSE(Find(L"png"));
    EXPECT_EQ(trace.Lines().size(), std::size_t{kFiles});
}

TEST_F(LargeFolder, FindsTheOnePictureAmongItsFiles)
{
    EXPECT_TRUE(Find(L"jpg"));
    EXPECT_EQ(trace.Lines().back(), L"<***DeviceConnect***><Supported file format is found on device.>");
    EXPECT_EQ(trace.Count(L"<***DeviceConnect***><1><FILE><zzz.jpg>\n"), 1);
}

} // namespace
} // namespace kestraboot
