#include "tests/support/import_patch.h"
#include "tests/trackers/mox/plugin_folder.h"
#include "trackers/mox/plugin_list.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

namespace kestraboot
{
namespace
{

using tests::PluginFolder;

class FolderOfPlugins : public testing::Test
{
protected:
    PluginFolder folder;
    PluginList plugins;
    WIN32_FIND_DATAA unused = {};
};

TEST_F(FolderOfPlugins, MustBeAFolder)
{
    std::ofstream(folder.Path() / "file") << "x";
    EXPECT_EQ(plugins.SetPluginFolder(nullptr), 0xC000000AU);
    EXPECT_EQ(plugins.SetPluginFolder(L".\\missing"), 0xC000000AU);
    EXPECT_EQ(plugins.SetPluginFolder(L".\\moxplugins\\file"), 0xC000000AU);
    EXPECT_EQ(plugins.SetPluginFolder(L""), 0xC000000AU);
    EXPECT_EQ(plugins.SetPluginFolder(L".\\moxplugins"), 0U);
}

TEST_F(FolderOfPlugins, LoadsNothingBeforeItIsSet)
{
    folder.Add(L"alpha");
    const FAKE_IMPORT(FindFirstFileW) listing([](const wchar_t*, WIN32_FIND_DATAW*) {
        return INVALID_HANDLE_VALUE;
    });
    EXPECT_EQ(plugins.LoadPluginFolder(), 0U);
    EXPECT_EQ(listing.Calls(), 0) << "the root of the drive was listed";
    EXPECT_FALSE(folder.IsLoaded(L"alpha"));
}

TEST_F(FolderOfPlugins, LoadsEveryPluginAndSkipsTheRest)
{
    ASSERT_EQ(plugins.SetPluginFolder(L".\\moxplugins"), mox::kSuccess);
    EXPECT_EQ(plugins.LoadPluginFolder(), 0U) << "an empty folder";
    folder.Add(L"alpha");
    folder.Add(L"beta");
    std::filesystem::create_directory(folder.Path() / "something.mox");
    std::ofstream(folder.Path() / "text.mox") << "not a library";
    std::filesystem::copy_file(tests::ProgramFolder() / "test_plugin.mox",
                               folder.Path() / "library.dll");
    std::set<std::wstring> tried;
    const FAKE_IMPORT(LoadLibraryExW) load([&](const wchar_t* path, HANDLE file, DWORD flags) {
        tried.insert(path);
        return ::LoadLibraryExA(std::filesystem::path(path).string().c_str(), file, flags);
    });
    EXPECT_EQ(plugins.LoadPluginFolder(), 2U);
    EXPECT_EQ(tried, (std::set<std::wstring>{L".\\moxplugins\\alpha.mox", L".\\moxplugins\\beta.mox",
                                             L".\\moxplugins\\text.mox"}));
    EXPECT_EQ(plugins.Entries().size(), 2U);
    EXPECT_EQ(::GetModuleHandleW(L".\\moxplugins\\library.dll"), nullptr);
}

TEST_F(FolderOfPlugins, CountsALibraryThatIsInTheProcessAsLoaded)
{
    const auto alpha = folder.Add(L"alpha");
    PluginList others;
    ASSERT_EQ(others.LoadPlugin(alpha), mox::kSuccess);
    ASSERT_EQ(plugins.SetPluginFolder(L".\\moxplugins"), mox::kSuccess);
    EXPECT_EQ(plugins.LoadPluginFolder(), 1U);
    EXPECT_TRUE(plugins.Entries().empty());
}

TEST_F(FolderOfPlugins, RemovedBeforeTheLoadLoadsNothing)
{
    folder.Add(L"alpha");
    ASSERT_EQ(plugins.SetPluginFolder(L".\\moxplugins"), mox::kSuccess);
    std::filesystem::remove_all(folder.Path());
    EXPECT_EQ(plugins.LoadPluginFolder(), 0U);
}

TEST_F(FolderOfPlugins, OfTwoHundredIsLoadedAndUnloaded)
{
    for (int number = 0; number < 200; ++number) {
        folder.Add(L"plugin" + std::to_wstring(number));
    }
    ASSERT_EQ(plugins.SetPluginFolder(L".\\moxplugins"), mox::kSuccess);
    EXPECT_EQ(plugins.LoadPluginFolder(), 200U);
    EXPECT_EQ(plugins.Entries().size(), 200U);
    EXPECT_EQ(plugins.UnloadAllPlugins(), 200U);
    for (int number = 0; number < 200; ++number) {
        const std::wstring name = L"plugin" + std::to_wstring(number);
        EXPECT_FALSE(folder.IsLoaded(name)) << name;
        EXPECT_EQ(folder.References(name), 0) << name;
    }
}

TEST_F(FolderOfPlugins, SkipsAFileWhosePathDoesNotFit)
{
    // ".\moxplugins\" has 13 characters, so a name of 246 makes a path of 259, the longest that fits.
    const std::wstring longest = std::wstring(242, L'l') + L".mox";
    const std::wstring names[] = {longest, L"x" + longest, L"last.mox"};
    std::size_t next = 0;
    const auto give = [&](WIN32_FIND_DATAW* entry) {
        *entry = {};
        names[next++].copy(entry->cFileName, MAX_PATH - 1);
    };
    const FAKE_IMPORT(FindFirstFileW) first([&](const wchar_t* pattern, WIN32_FIND_DATAW* entry) {
        EXPECT_STREQ(pattern, L".\\moxplugins\\*.mox");
        give(entry);
        return ::FindFirstFileA(".", &unused);
    });
    const FAKE_IMPORT(FindNextFileW) further([&](HANDLE, WIN32_FIND_DATAW* entry) -> BOOL {
        if (next == std::size(names)) {
            return FALSE;
        }
        give(entry);
        return TRUE;
    });
    std::vector<std::wstring> tried;
    const FAKE_IMPORT(LoadLibraryExW) load([&](const wchar_t* path, HANDLE, DWORD) -> HMODULE {
        tried.emplace_back(path);
        return nullptr;
    });
    ASSERT_EQ(plugins.SetPluginFolder(L".\\moxplugins"), mox::kSuccess);
    EXPECT_EQ(plugins.LoadPluginFolder(), 0U);
    EXPECT_EQ(tried,
              (std::vector<std::wstring>{L".\\moxplugins\\" + longest, L".\\moxplugins\\last.mox"}));
}

} // namespace
} // namespace kestraboot
