// A source manager from elsewhere: the system's own twain_32.dll.
#include "foundation/handles.h"
#include "tests/system/imaging/leak_check.h"
#include "trackers/still_image/twain_source.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace kestraboot::tests
{
namespace
{

std::filesystem::path SystemFolder()
{
    wchar_t folder[MAX_PATH] = {};
    ::GetSystemDirectoryW(folder, MAX_PATH);
    return folder;
}

/// Windows' folder of 64-bit data sources, with one source in it. Wine's source manager looks up two
/// names. The other one is a camera library of the host, which allocates memory at each look-up.
class RealSourceManager : public testing::Test
{
protected:
    RealSourceManager()
    {
        wchar_t self[MAX_PATH] = {};
        ::GetModuleFileNameW(nullptr, self, MAX_PATH);
        const std::filesystem::path sources = SystemFolder().parent_path() / L"twain_64";
        std::filesystem::create_directories(sources);
        std::filesystem::copy_file(std::filesystem::path(self).parent_path() / L"kestraboot.ds",
                                   sources / L"sane.ds",
                                   std::filesystem::copy_options::overwrite_existing);
        std::filesystem::remove(sources / L"gphoto2.ds");
    }
};

TEST_F(RealSourceManager, IsTheSystems)
{
    const UniqueModule library(::LoadLibraryW(L"twain_32.dll"));
    wchar_t path[MAX_PATH] = {};
    ::GetModuleFileNameW(library.get(), path, MAX_PATH);
    EXPECT_TRUE(std::filesystem::equivalent(std::filesystem::path(path).parent_path(), SystemFolder()))
        << std::filesystem::path(path);
}

TEST_F(RealSourceManager, ListsTheInstalledSource)
{
    EXPECT_TRUE(TwainSourceListed(L"Corvane Stand-In Source"));
    EXPECT_TRUE(TwainSourceListed(L"CORVANE stand-in source"));
    EXPECT_FALSE(TwainSourceListed(L"Corvane Stand-In"));
}

TEST_F(RealSourceManager, IsUnchangedAfter200LookUps)
{
    int listed = 0;
    EXPECT_TRUE(LeavesNothingBehind(::GetCurrentProcess(), "200 look-ups", [&] {
        listed = 0;
        for (int i = 0; i < 100; ++i) {
            listed += TwainSourceListed(L"Corvane Stand-In Source") ? 1 : 0;
            listed += TwainSourceListed(L"Not Installed") ? 1 : 0;
        }
    }));
    EXPECT_EQ(listed, 100);
    EXPECT_EQ(::GetModuleHandleW(L"twain_32.dll"), nullptr);
    EXPECT_EQ(::FindWindowW(L"STATIC", L"TWAINTrackerWindow"), nullptr);
}

} // namespace
} // namespace kestraboot::tests
