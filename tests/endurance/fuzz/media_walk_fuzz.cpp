// The search for media in generated folders and in real ones: the entries that it visits, in order.
#include "service/media_walk.h"
#include "tests/endurance/fuzz/folder_tree.h"
#include "tests/endurance/fuzz/fuzz.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trace_recorder.h"

#include <gtest/gtest.h>

#include <fstream>

namespace kestraboot::fuzz
{
namespace
{

ExtensionSet SetOf(const std::vector<std::wstring>& extensions)
{
    std::vector<formatInfo_tag> formats;
    for (const std::wstring& extension : extensions) {
        formats.push_back({extension, L"Image"});
    }
    return ExtensionSet(formats);
}

TEST(MediaWalkFuzz, WalksGeneratedFoldersLikeTheModel)
{
    SteeredFolders folders;
    tests::TraceRecorder trace;
    const UINT errorMode = ::GetErrorMode();
    Fuzz({.usual = 4'000}, [&](Random& random) {
        const FolderTree tree = AnyTree(random);
        const std::wstring root = random.Pick({L"E:", L"E:\\", L"\\\\?\\Volume{1}", L""});
        const auto depth = static_cast<unsigned>(random.Pick({1, 2, 3, 4, 4, 4, 5, 9}));
        const std::vector<std::wstring> supported = AnySupported(random);
        folders.Become(root, tree);
        trace.Clear();

        const bool found = FindSupportedFile(root.c_str(), depth, SetOf(supported));

        const Lister list = [&](const std::wstring& folder) {
            auto entries = tree.List(root, folder);
            return entries && entries->empty() ? std::nullopt : entries;
        };
        EXPECT_EQ((Walked{found, trace.Lines()}), ModelOfWalk(root, depth, supported, list));
        EXPECT_EQ(folders.Open(), 0U);
        EXPECT_EQ(folders.CallsWithErrorBoxes(), 0);
        EXPECT_EQ(::GetErrorMode(), errorMode);
    });
}

/// The folder as Windows lists it, in its own order.
std::optional<std::vector<Entry>> ListReally(const std::wstring& folder)
{
    WIN32_FIND_DATAW found = {};
    const HANDLE listing = ::FindFirstFileW((folder + L"\\*").c_str(), &found);
    if (listing == INVALID_HANDLE_VALUE) {
        return std::nullopt;
    }
    std::vector<Entry> entries;
    do {
        entries.push_back({found.cFileName, found.dwFileAttributes});
    } while (::FindNextFileW(listing, &found));
    ::FindClose(listing);
    return entries;
}

void GrowReally(Random& random, const std::filesystem::path& folder, int depth)
{
    static constexpr const wchar_t* kNames[] = {
        L"IMG_0001.JPG", L"a.b.jpg", L"no extension",  L".jpg",     L"jpg",     L"x.PDF",
        L"DCIM",         L"100.jpg", L"\u00E9t\u00E9", L"a.\u00E9", L"a b.txt", L"%s.avi"};
    std::filesystem::create_directories(folder);
    for (std::size_t i = random.Below(5); i > 0; --i) {
        const std::filesystem::path child = folder / random.Pick(kNames);
        if (std::filesystem::exists(child)) {
            continue;
        }
        if (depth < 5 && random.Chance(50)) {
            GrowReally(random, child, depth + 1);
        } else {
            std::ofstream(child).put('x');
        }
    }
}

TEST(MediaWalkFuzz, WalksRealFoldersLikeTheModel)
{
    const tests::TempFolder temp;
    tests::TraceRecorder trace;
    Fuzz({.usual = 50, .share = 50}, [&](Random& random) {
        const std::filesystem::path volume = temp.Path() / L"volume";
        std::filesystem::remove_all(volume);
        GrowReally(random, volume, 1);
        const auto depth = static_cast<unsigned>(random.Between(1, 5));
        const std::vector<std::wstring> supported = AnySupported(random);
        trace.Clear();

        const bool found = FindSupportedFile(volume.c_str(), depth, SetOf(supported));

        EXPECT_EQ((Walked{found, trace.Lines()}),
                  ModelOfWalk(volume.wstring(), depth, supported, ListReally));
    });
}

} // namespace
} // namespace kestraboot::fuzz
