#include "tools/ctl/look/folder.h"

#include <windows.h>
#include <memory>

namespace kestraboot::tools
{

std::vector<FolderEntry> EntriesOf(const std::wstring& pattern, unsigned long& error)
{
    std::vector<FolderEntry> entries;
    WIN32_FIND_DATAW entry = {};
    const HANDLE search = ::FindFirstFileW(pattern.c_str(), &entry);
    if (search == INVALID_HANDLE_VALUE) {
        error = ::GetLastError();
        if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) {
            error = ERROR_SUCCESS;
        }
        return entries;
    }
    const std::unique_ptr<void, decltype(&::FindClose)> owner(search, ::FindClose);
    do {
        const std::wstring name = entry.cFileName;
        const bool isFolder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        const bool isLink = (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
        if (name != L"." && name != L".." && !(isFolder && isLink)) {
            entries.push_back({name, isFolder});
        }
    } while (::FindNextFileW(search, &entry));
    error = ::GetLastError();
    if (error == ERROR_NO_MORE_FILES) {
        error = ERROR_SUCCESS;
    }
    return entries;
}

} // namespace kestraboot::tools
