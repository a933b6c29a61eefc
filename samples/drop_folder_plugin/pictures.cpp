#include "pictures.h"

#include "handle.h"
#include "texts.h"

#include <cwchar>

namespace
{

/// Ends a search with the object.
class Search
{
public:
    Search(const std::wstring& pattern, WIN32_FIND_DATAW& found) noexcept
        : handle(::FindFirstFileW(pattern.c_str(), &found))
    {
    }
    Search(const Search&) = delete;
    Search& operator=(const Search&) = delete;
    ~Search()
    {
        if (Found()) {
            ::FindClose(handle);
        }
    }

    [[nodiscard]] bool Found() const noexcept { return handle != INVALID_HANDLE_VALUE; }
    bool Next(WIN32_FIND_DATAW& found) const noexcept { return ::FindNextFileW(handle, &found) != 0; }

private:
    HANDLE handle;
};

bool IsFolderBelow(const WIN32_FIND_DATAW& found)
{
    // A reparse point may lead to the folder above it.
    return (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 &&
           (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0 &&
           std::wcscmp(found.cFileName, L".") != 0 && std::wcscmp(found.cFileName, L"..") != 0;
}

} // namespace

bool IgnoreCase::operator()(const std::wstring& left, const std::wstring& right) const noexcept
{
    return ::CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_LESS_THAN;
}

bool IsPicture(const std::wstring& name)
{
    const std::size_t dot = name.rfind(L'.');
    if (dot == std::wstring::npos) {
        return false;
    }
    for (const wchar_t* const extension : texts::kPictureExtensions) {
        if (_wcsicmp(name.c_str() + dot, extension) == 0) {
            return true;
        }
    }
    return false;
}

bool ListPictures(const std::wstring& folder, HANDLE ending, Pictures& pictures)
{
    WIN32_FIND_DATAW found = {};
    const Search search(folder + L"\\*", found);
    if (!search.Found()) {
        return false;
    }
    do {
        const std::wstring path = folder + L'\\' + found.cFileName;
        if (IsFolderBelow(found)) {
            static_cast<void>(ListPictures(path, ending, pictures)); // left out if it cannot be read
        } else if ((found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 && IsPicture(path)) {
            pictures.insert(path);
        }
        if (::WaitForSingleObject(ending, 0) == WAIT_OBJECT_0) {
            return false;
        }
    } while (search.Next(found));
    return ::GetLastError() == ERROR_NO_MORE_FILES;
}

PictureState StateOf(const std::wstring& picture)
{
    // Nobody may write it while this is open. So it cannot be opened while somebody does.
    const Handle file(::CreateFileW(picture.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_DELETE,
                                    nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!file) {
        return ::GetLastError() == ERROR_SHARING_VIOLATION ? PictureState::Busy : PictureState::Unknown;
    }
    LARGE_INTEGER size = {};
    return ::GetFileSizeEx(file.Get(), &size) && size.QuadPart > 0 ? PictureState::Settled
                                                                   : PictureState::Unknown;
}
