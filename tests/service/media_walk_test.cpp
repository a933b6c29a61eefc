#include "service/media_walk.h"
#include "tests/support/format_failure.h"
#include "tests/support/handle_count.h"
#include "tests/support/import_patch.h"
#include "tests/support/temp_folder.h"
#include "tests/support/trace_recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cwchar>
#include <map>
#include <new>
#include <set>

namespace kestraboot
{
namespace
{

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::UnorderedElementsAre;

const wchar_t* const kFound = L"<***DeviceConnect***><Supported file format is found on device.>";

ExtensionSet Pictures()
{
    return ExtensionSet({{L"jpg", L"Image"}, {L"pdf", L"Image"}, {L"avi", L"Video"}});
}

std::wstring Folder(int level, const std::filesystem::path& path)
{
    return L"<***DeviceConnect***><" + std::to_wstring(level) + L"><FOLDER><" + path.wstring() + L">\n";
}

std::wstring File(int level, const std::wstring& name)
{
    return L"<***DeviceConnect***><" + std::to_wstring(level) + L"><FILE><" + name + L">\n";
}

/// Real folders.
class MediaWalk : public testing::Test
{
protected:
    bool Find(unsigned depth = 4) { return FindSupportedFile(volume.Path().c_str(), depth, Pictures()); }

    tests::TempFolder volume;
    tests::TraceRecorder trace;
};

TEST_F(MediaWalk, FindsAPictureInTheRoot)
{
    volume.AddFile(L"IMG_0001.JPG");
    EXPECT_TRUE(Find());
    EXPECT_THAT(trace.Lines(), ElementsAre(File(1, L"IMG_0001.JPG"), kFound));
}

TEST_F(MediaWalk, FindsNothingOnAnEmptyVolume)
{
    EXPECT_FALSE(Find());
    EXPECT_THAT(trace.Lines(), IsEmpty());
}

TEST_F(MediaWalk, TracesEachFolderByItsWholePathAndEachFileByItsName)
{
    volume.AddFile(L"DCIM/100TEST/IMG_0001.JPG");
    EXPECT_TRUE(Find());
    EXPECT_THAT(trace.Lines(), ElementsAre(Folder(1, volume.Path() / L"DCIM"),
                                           Folder(2, volume.Path() / L"DCIM" / L"100TEST"),
                                           File(3, L"IMG_0001.JPG"), kFound));
}

TEST_F(MediaWalk, ReachesThreeFolderLevelsBelowTheRootAtDepthFour)
{
    volume.AddFile(L"a/b/c/d/deep.jpg");
    EXPECT_FALSE(Find(4));
    // The walk finds and traces the folder that is too deep, but does not list it.
    EXPECT_THAT(trace.Lines(), Contains(Folder(4, volume.Path() / L"a" / L"b" / L"c" / L"d")));
    EXPECT_THAT(trace.Lines(), Not(Contains(File(5, L"deep.jpg"))));
    EXPECT_TRUE(Find(5));
}

TEST_F(MediaWalk, ScansTheRootAloneAtDepthOne)
{
    volume.AddFile(L"sub/x.jpg");
    EXPECT_FALSE(Find(1));
    EXPECT_THAT(trace.Lines(), ElementsAre(Folder(1, volume.Path() / L"sub")));
    volume.AddFile(L"y.jpg");
    EXPECT_TRUE(Find(1));
}

TEST_F(MediaWalk, ListsAllFoldersOfALevelBeforeTheNext)
{
    volume.AddFile(L"a/deep/one.jpg");
    volume.AddFile(L"b/two.jpg");
    EXPECT_TRUE(Find());
    EXPECT_EQ(trace.Count(File(2, L"two.jpg")), 1);
    EXPECT_EQ(trace.Count(File(3, L"one.jpg")), 0);
}

TEST_F(MediaWalk, MatchesExtensionsInAnyLetterCase)
{
    volume.AddFile(L"x.jPg");
    EXPECT_TRUE(Find());
}

TEST_F(MediaWalk, NeverAcceptsAPdf)
{
    volume.AddFile(L"x.pdf");
    volume.AddFile(L"y.PDF");
    EXPECT_FALSE(Find());
}

TEST_F(MediaWalk, SkipsFilesWithoutExtension)
{
    volume.AddFile(L"jpg");
    EXPECT_FALSE(FindSupportedFile(volume.Path().c_str(), 4,
                                   ExtensionSet({{L"jpg", L"Image"}, {L"", L"Image"}})));
    EXPECT_THAT(trace.Lines(), ElementsAre(File(1, L"jpg")));
}

TEST_F(MediaWalk, AFolderNamedLikeAPictureIsAFolder)
{
    volume.AddFolder(L"album.jpg");
    EXPECT_FALSE(Find());
    EXPECT_THAT(trace.Lines(), ElementsAre(Folder(1, volume.Path() / L"album.jpg")));
}

TEST_F(MediaWalk, LeavesNothingOpen)
{
    volume.AddFile(L"a/b/x.txt");
    volume.AddFile(L"a/y.jpg");
    EXPECT_EQ(tests::HandlesLeftBy([&] {
                  EXPECT_TRUE(Find());
                  EXPECT_FALSE(Find(1));
                  EXPECT_FALSE(FindSupportedFile(L"Q:\\nowhere", 4, Pictures()));
              }),
              0);
}

TEST_F(MediaWalk, SuppressesErrorBoxesAndRestoresTheModeOnEveryPath)
{
    volume.AddFile(L"x.jpg");
    std::set<UINT> modes;
    const FAKE_IMPORT(FindFirstFileW) first([&](const wchar_t* pattern, WIN32_FIND_DATAW* entry) {
        const UINT mode = ::SetErrorMode(0);
        modes.insert(mode);
        ::SetErrorMode(mode);
        return ::FindFirstFileExW(pattern, FindExInfoStandard, entry, FindExSearchNameMatch, nullptr, 0);
    });
    ::SetErrorMode(SEM_NOOPENFILEERRORBOX);
    EXPECT_TRUE(Find());
    EXPECT_FALSE(FindSupportedFile(L"Q:\\nowhere", 4, Pictures()));
    EXPECT_FALSE(
        FindSupportedFile(volume.Path().c_str(), 4, ExtensionSet(std::vector<formatInfo_tag>())));
    EXPECT_EQ(modes, std::set<UINT>{SEM_FAILCRITICALERRORS});
    EXPECT_EQ(::SetErrorMode(0), static_cast<UINT>(SEM_NOOPENFILEERRORBOX));
}

/// Folders in whose listing the test controls each entry.
class SteeredWalk : public testing::Test
{
protected:
    struct Entry {
        std::wstring name;
        bool folder = false;
    };
    std::map<std::wstring, std::vector<Entry>> folders; ///< by the pattern that lists them
    std::set<HANDLE> open;
    std::vector<HANDLE> closed;

    void Fill(WIN32_FIND_DATAW* data, const Entry& entry)
    {
        *data = {};
        data->dwFileAttributes = entry.folder ? FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_READONLY
                                              : FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_HIDDEN;
        std::wcsncpy(data->cFileName, entry.name.c_str(), MAX_PATH - 1);
    }

    struct Listing {
        const std::vector<Entry>* entries;
        std::size_t next;
    };

    FAKE_IMPORT(FindFirstFileW)
    first{[this](const wchar_t* pattern, WIN32_FIND_DATAW* data) -> HANDLE {
        const auto found = folders.find(pattern);
        if (found == folders.end()) {
            return INVALID_HANDLE_VALUE;
        }
        Fill(data, found->second.front());
        auto* const listing = new Listing{&found->second, 1};
        open.insert(listing);
        return listing;
    }};
    FAKE_IMPORT(FindNextFileW)
    next{[this](HANDLE handle, WIN32_FIND_DATAW* data) -> BOOL {
        auto* const listing = static_cast<Listing*>(handle);
        if (listing->next == listing->entries->size()) {
            return FALSE;
        }
        Fill(data, (*listing->entries)[listing->next++]);
        return TRUE;
    }};
    FAKE_IMPORT(FindClose)
    close{[this](HANDLE handle) -> BOOL {
        closed.push_back(handle);
        if (open.erase(handle) != 0) {
            delete static_cast<Listing*>(handle);
        }
        return TRUE;
    }};
    tests::TraceRecorder trace;
};

TEST_F(SteeredWalk, AFolderThatCannotBeListedEndsTheWholeSearch)
{
    folders[L"E:\\*"] = {{L"locked", true}, {L"DCIM", true}};
    folders[L"E:\\DCIM\\*"] = {{L"x.jpg"}};
    EXPECT_FALSE(FindSupportedFile(L"E:", 4, Pictures()));
    EXPECT_THAT(trace.Lines(), ElementsAre(Folder(1, L"E:\\locked"), Folder(1, L"E:\\DCIM")));
    EXPECT_THAT(open, IsEmpty());
}

TEST_F(SteeredWalk, TheInvalidHandleOfAFailedListingIsPassedToTheClose)
{
    EXPECT_FALSE(FindSupportedFile(L"E:", 4, Pictures()));
    EXPECT_THAT(closed, ElementsAre(INVALID_HANDLE_VALUE));
}

TEST_F(SteeredWalk, TheListingIsClosedBeforeTheMatchIsTraced)
{
    folders[L"E:\\*"] = {{L"."}, {L"x.jpg"}, {L"y.jpg"}};
    std::vector<std::pair<std::wstring, std::size_t>> linesAndOpenListings;
    const FAKE_IMPORT(OutputDebugStringW) output([&](const wchar_t* line) {
        linesAndOpenListings.emplace_back(line, open.size());
    });
    EXPECT_TRUE(FindSupportedFile(L"E:", 4, Pictures()));
    EXPECT_THAT(linesAndOpenListings, ElementsAre(std::pair(File(1, L"x.jpg"), std::size_t{1}),
                                                  std::pair(std::wstring(kFound), std::size_t{0})));
}

TEST_F(SteeredWalk, DotEntriesAreNeitherTracedNorFollowed)
{
    folders[L"E:\\*"] = {{L".", true}, {L"..", true}, {L"...", true}, {L".hidden", true}};
    folders[L"E:\\...\\*"] = {{L"."}};
    folders[L"E:\\.hidden\\*"] = {{L"."}};
    EXPECT_FALSE(FindSupportedFile(L"E:", 4, Pictures()));
    EXPECT_THAT(trace.Lines(), ElementsAre(Folder(1, L"E:\\..."), Folder(1, L"E:\\.hidden")));
}

TEST_F(SteeredWalk, ANameThatEndsInADotHasAnEmptyExtension)
{
    folders[L"E:\\*"] = {{L"jpg."}};
    EXPECT_FALSE(FindSupportedFile(L"E:", 4, Pictures()));
    EXPECT_TRUE(FindSupportedFile(L"E:", 4, ExtensionSet(std::vector<formatInfo_tag>{{L"", L"Image"}})));
}

TEST_F(SteeredWalk, AVolumeThatVanishesInTheMiddleIsNotFound)
{
    folders[L"E:\\*"] = {{L"DCIM", true}};
    EXPECT_FALSE(FindSupportedFile(L"E:", 4, Pictures()));
}

TEST_F(SteeredWalk, ALineLongerThanTheTraceBufferIsCut)
{
    const std::wstring name(255, L'n');
    folders[L"E:\\*"] = {{name}};
    EXPECT_FALSE(FindSupportedFile(L"E:", 4, Pictures()));
    EXPECT_THAT(trace.Lines(), ElementsAre(File(1, name).substr(0, 259)));
}

TEST_F(SteeredWalk, ALineAfterALongerOneContainsNoneOfItsText)
{
    folders[L"E:\\*"] = {{L"a long name.txt"}, {L"b"}, {std::wstring(255, L'n')}, {L"c.txt"}};
    EXPECT_FALSE(FindSupportedFile(L"E:", 4, Pictures()));
    EXPECT_THAT(trace.Lines(),
                ElementsAre(File(1, L"a long name.txt"), File(1, L"b"),
                            File(1, std::wstring(255, L'n')).substr(0, 259), File(1, L"c.txt")));
}

TEST_F(SteeredWalk, LinesThatCannotBeFormattedAreEmpty)
{
    folders[L"E:\\*"] = {{L"a.txt"}, {L"b.jpg"}};
    const tests::FormatFailure fails;
    EXPECT_TRUE(FindSupportedFile(L"E:", 4, Pictures()));
    EXPECT_THAT(trace.Lines(), ElementsAre(L"", L"", kFound));
}

TEST_F(SteeredWalk, AnUnpairedSurrogateIsJustACharacter)
{
    folders[L"E:\\*"] = {{L"\xD800.jpg"}};
    EXPECT_TRUE(FindSupportedFile(L"E:", 4, Pictures()));
}

} // namespace
} // namespace kestraboot
