#pragma once

#include "tests/endurance/fuzz/random.h"
#include "tests/endurance/fuzz/walk_model.h"
#include "tests/support/import_patch.h"

#include <map>

namespace kestraboot::fuzz
{

/// A folder in memory only.
struct FolderTree {
    std::vector<Entry> entries;
    std::map<std::wstring, FolderTree> folders;
    bool listable = true;
    bool loops = false; ///< lists its parent's entries again, as a link to there would

    /// The listing of that folder; `root` is the name of this tree.
    [[nodiscard]] std::optional<std::vector<Entry>> List(const std::wstring& root,
                                                         const std::wstring& folder) const;
};

/// Camera cards, deep trees, crowded folders, awkward names, folders that cannot be listed or loop.
[[nodiscard]] FolderTree AnyTree(Random& random);

/// The extensions that a registry may list, in any case, doubled, empty or unknown.
[[nodiscard]] std::vector<std::wstring> AnySupported(Random& random);

/// Replaces the file system by a tree for anybody who lists folders.
class SteeredFolders
{
public:
    SteeredFolders();

    /// The tree must live as long as it is listed.
    void Become(const std::wstring& calledRoot, const FolderTree& shown);

    /// Listings that are still open, and calls that were made with critical-error boxes enabled.
    [[nodiscard]] std::size_t Open() const noexcept { return listings.size(); }
    [[nodiscard]] int CallsWithErrorBoxes() const noexcept { return withErrorBoxes; }

private:
    struct Listing {
        std::vector<Entry> entries;
        std::size_t next = 0;
    };

    HANDLE First(const wchar_t* pattern, WIN32_FIND_DATAW* found);
    BOOL Next(HANDLE handle, WIN32_FIND_DATAW* found);
    void CountErrorBoxes();

    std::wstring root;
    const FolderTree* tree = nullptr;
    std::map<HANDLE, Listing> listings;
    std::uintptr_t handles = 0;
    int withErrorBoxes = 0;
    FAKE_IMPORT(FindFirstFileW) first;
    FAKE_IMPORT(FindNextFileW) following;
    FAKE_IMPORT(FindClose) close;
};

} // namespace kestraboot::fuzz
