#include "tests/endurance/fuzz/folder_tree.h"

#include <algorithm>

namespace kestraboot::fuzz
{
namespace
{

std::wstring AnyName(Random& random)
{
    static constexpr const wchar_t* kExtensions[] = {
        L"jpg", L"JPG",  L"jPeG", L"avi",  L"pdf",    L"PDF",    L"mp3",    L"txt",
        L"",    L"jpg ", L"jp",   L"jpgx", L"\u00E9", L"\u00C9", L"\u212A", L"\u0131"};
    static constexpr const wchar_t* kStems[] = {L"IMG_0001", L"a.b", L"",     L".",
                                                L"DCIM",     L"..",  L"x.jpg"};
    std::wstring stem;
    if (random.Chance(60)) {
        stem = random.Pick(kStems);
    } else {
        stem = random.TextOf(random.Chance(95) ? random.Between(1, 12) : random.Between(200, 250));
        std::ranges::replace(stem, L'\\', L'_');
    }
    const std::wstring name =
        stem + (random.Chance(70) ? L'.' + std::wstring(random.Pick(kExtensions)) : L"");
    return name.empty() ? L"n" : name;
}

unsigned long AnyAttributes(Random& random)
{
    return random.Pick<unsigned long>(
        {FILE_ATTRIBUTE_NORMAL, FILE_ATTRIBUTE_ARCHIVE, FILE_ATTRIBUTE_HIDDEN,
         FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_SYSTEM, FILE_ATTRIBUTE_REPARSE_POINT, 0, 0x20000000});
}

/// `room` bounds the folders of the whole tree.
FolderTree Grow(Random& random, unsigned depth, int& room, unsigned trouble)
{
    FolderTree tree;
    tree.listable = !random.Chance(trouble);
    if (random.Chance(90)) {
        tree.entries = {{L".", FILE_ATTRIBUTE_DIRECTORY}, {L"..", FILE_ATTRIBUTE_DIRECTORY}};
    }
    const std::size_t count = random.Chance(95) ? random.Below(6) : random.Between(30, 60);
    for (std::size_t i = 0; i < count; ++i) {
        Entry entry = {AnyName(random), AnyAttributes(random)};
        if (entry.name == L"." || entry.name == L"..") {
            continue; // a file of that name cannot exist
        }
        if (depth < 7 && room > 0 && random.Chance(35)) {
            --room;
            entry.attributes |= FILE_ATTRIBUTE_DIRECTORY;
            FolderTree& folder = tree.folders[entry.name];
            if (random.Chance(trouble)) {
                folder.loops = true;
            } else {
                folder = Grow(random, depth + 1, room, trouble);
            }
        }
        tree.entries.push_back(std::move(entry));
    }
    return tree;
}

} // namespace

std::optional<std::vector<Entry>> FolderTree::List(const std::wstring& root,
                                                   const std::wstring& folder) const
{
    if (!folder.starts_with(root)) {
        return std::nullopt;
    }
    const FolderTree* found = this;
    for (std::size_t at = root.size(); at < folder.size();) {
        const std::size_t end = std::min(folder.find(L'\\', at + 1), folder.size());
        const auto child = found->folders.find(folder.substr(at + 1, end - at - 1));
        if (folder[at] != L'\\' || child == found->folders.end()) {
            return std::nullopt;
        }
        if (!child->second.loops) {
            found = &child->second;
        }
        at = end;
    }
    return found->listable ? std::optional(found->entries) : std::nullopt;
}

FolderTree AnyTree(Random& random)
{
    int room = static_cast<int>(random.Pick({3U, 10U, 25U}));
    const unsigned trouble = random.Pick({0U, 0U, 3U, 10U});
    return Grow(random, 1, room, trouble);
}

std::vector<std::wstring> AnySupported(Random& random)
{
    static constexpr const wchar_t* kLists[] = {L"jpg",    L"jpeg",    L"AVI", L"pdf", L"Pdf",  L"",
                                                L"\u00C9", L"\u00E9",  L"k",   L"i",   L".jpg", L"jpg ",
                                                L"b.jpg",  L"nothing", L"txt", L"JPG"};
    std::vector<std::wstring> supported;
    for (std::size_t i = random.Below(5); i > 0; --i) {
        supported.emplace_back(random.Pick(kLists));
    }
    return supported;
}

SteeredFolders::SteeredFolders()
    : first([this](const wchar_t* pattern, WIN32_FIND_DATAW* found) {
          return First(pattern, found);
      }),
      following([this](HANDLE handle, WIN32_FIND_DATAW* found) {
          return Next(handle, found);
      }),
      close([this](HANDLE handle) -> BOOL {
          return listings.erase(handle) != 0 ? TRUE : FALSE;
      })
{
}

void SteeredFolders::Become(const std::wstring& calledRoot, const FolderTree& shown)
{
    root = calledRoot;
    tree = &shown;
    listings.clear();
    withErrorBoxes = 0;
}

HANDLE SteeredFolders::First(const wchar_t* pattern, WIN32_FIND_DATAW* found)
{
    CountErrorBoxes();
    const std::wstring asked = pattern;
    if (!asked.ends_with(L"\\*")) {
        return INVALID_HANDLE_VALUE;
    }
    const auto entries = tree->List(root, asked.substr(0, asked.size() - 2));
    if (!entries) {
        return INVALID_HANDLE_VALUE;
    }
    const auto handle = reinterpret_cast<HANDLE>(++handles * 16);
    listings[handle] = {*entries, 0};
    if (!Next(handle, found)) {
        listings.erase(handle); // as of an empty root folder, which has no "." either
        return INVALID_HANDLE_VALUE;
    }
    return handle;
}

BOOL SteeredFolders::Next(HANDLE handle, WIN32_FIND_DATAW* found)
{
    CountErrorBoxes();
    Listing& listing = listings.at(handle);
    if (listing.next == listing.entries.size()) {
        return FALSE;
    }
    const Entry& entry = listing.entries[listing.next++];
    *found = {};
    found->dwFileAttributes = entry.attributes;
    entry.name.copy(found->cFileName, MAX_PATH - 1);
    return TRUE;
}

void SteeredFolders::CountErrorBoxes()
{
    withErrorBoxes += (::GetErrorMode() & SEM_FAILCRITICALERRORS) == 0 ? 1 : 0;
}

} // namespace kestraboot::fuzz
