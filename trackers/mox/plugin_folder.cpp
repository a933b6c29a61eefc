// The folder part of PluginList.
#include "foundation/handles.h"
#include "trackers/mox/plugin_list.h"

#include <new>
#include <shlwapi.h>
#include <string>

namespace kestraboot
{

mox::Status PluginList::SetPluginFolder(const wchar_t* path) noexcept
{
    if (path == nullptr || !::PathIsDirectoryW(path)) {
        return mox::kBadArgument;
    }
    CopyToField(folder, path);
    return mox::kSuccess;
}

std::size_t PluginList::LoadPluginFolder() noexcept
{
    if (!::PathIsDirectoryW(folder)) {
        return 0;
    }
    std::size_t loaded = 0;
    try {
        const std::wstring pattern = std::wstring(folder) + L"\\*.mox";
        WIN32_FIND_DATAW entry = {};
        const UniqueFindHandle listing(::FindFirstFileW(pattern.c_str(), &entry));
        for (bool more = static_cast<bool>(listing); more;
             more = ::FindNextFileW(listing.get(), &entry) != FALSE) {
            const bool isFolder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            if (!isFolder && LoadFolderEntry(entry.cFileName)) {
                ++loaded;
            }
        }
    } catch (const std::bad_alloc&) {
        // The loads so far count.
    }
    return loaded;
}

bool PluginList::LoadFolderEntry(std::wstring_view fileName) noexcept
{
    const std::size_t folderLength = ::wcsnlen(folder, kFieldCapacity);
    if (folderLength + 1 + fileName.size() >= kFieldCapacity) {
        return false; // a path that is cut to fit would name another file
    }
    mox::PluginDescriptor wanted = {};
    CopyToField(wanted.modulePath, folder);
    wanted.modulePath[folderLength] = L'\\';
    fileName.copy(wanted.modulePath + folderLength + 1, fileName.size());
    return LoadPlugin(wanted) == mox::kSuccess;
}

} // namespace kestraboot
