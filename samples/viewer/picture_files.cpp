#include "picture_files.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <shlwapi.h>

namespace
{

bool IsPicture(const wchar_t* name)
{
    const wchar_t* const extension = ::PathFindExtensionW(name);
    for (const wchar_t* const known : {L".jpg", L".jpeg", L".png", L".tif", L".tiff"}) {
        if (_wcsicmp(extension, known) == 0) {
            return true;
        }
    }
    return false;
}

bool IsFolderToSearch(const WIN32_FIND_DATAW& entry)
{
    constexpr DWORD kOfWindows = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM;
    const std::wstring name = entry.cFileName;
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0 &&
           (entry.dwFileAttributes & kOfWindows) != kOfWindows && name != L"." && name != L"..";
}

struct FolderContents {
    std::vector<PictureFile> pictures;
    std::vector<std::filesystem::path> folders;
};

/// False if it could not be read to its end. `contents` has the entries found until then in any case.
bool ReadFolder(const std::filesystem::path& folder, FolderContents& contents)
{
    WIN32_FIND_DATAW entry = {};
    const HANDLE listing = ::FindFirstFileW((folder / L"*").c_str(), &entry);
    if (listing == INVALID_HANDLE_VALUE) {
        return ::GetLastError() == ERROR_FILE_NOT_FOUND; // an empty root has not even "."
    }
    do {
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            if (IsFolderToSearch(entry)) {
                contents.folders.push_back(folder / entry.cFileName);
            }
        } else if (IsPicture(entry.cFileName)) {
            const std::uint64_t size = static_cast<std::uint64_t>(entry.nFileSizeHigh) << 32;
            contents.pictures.push_back({folder / entry.cFileName, size | entry.nFileSizeLow});
        }
    } while (::FindNextFileW(listing, &entry));
    const bool whole = ::GetLastError() == ERROR_NO_MORE_FILES;
    ::FindClose(listing);
    return whole;
}

/// Of paths in one folder, whose length they share: the comparison takes a while for each character.
auto ByName(const std::filesystem::path& folder)
{
    return [common = folder.native().size()](const std::filesystem::path& one,
                                             const std::filesystem::path& other) {
        return ::StrCmpLogicalW(one.c_str() + common, other.c_str() + common) < 0;
    };
}

} // namespace

std::vector<std::filesystem::path>
FindPictures(const std::filesystem::path& root,
             const std::function<bool(std::vector<PictureFile>&&)>& found)
{
    std::vector<std::filesystem::path> unreadable;
    std::vector<std::filesystem::path> toSearch = {root}; // the next one last
    while (!toSearch.empty()) {
        const std::filesystem::path folder = std::move(toSearch.back());
        toSearch.pop_back();
        FolderContents contents;
        if (!ReadFolder(folder, contents)) {
            unreadable.push_back(folder);
        }
        std::ranges::sort(contents.pictures, ByName(folder), &PictureFile::path);
        std::ranges::sort(contents.folders, ByName(folder));
        if (!contents.pictures.empty() && !found(std::move(contents.pictures))) {
            break;
        }
        toSearch.insert(toSearch.end(), contents.folders.rbegin(), contents.folders.rend());
    }
    return unreadable;
}
