#include "tools/ctl/look/module_search.h"

#include "tools/ctl/check/words.h"
#include "tools/ctl/files.h"
#include "tools/ctl/look/file_contents.h"

#include <windows.h>
#include <algorithm>
#include <stdexcept>

namespace kestraboot::tools
{
namespace
{

std::wstring PathFrom(UINT(WINAPI* ask)(wchar_t*, UINT))
{
    wchar_t path[MAX_PATH] = {};
    const UINT length = ask(path, MAX_PATH);
    if (length == 0 || length >= MAX_PATH) {
        throw std::runtime_error("cannot get the path of Windows' folders");
    }
    return {path, length};
}

std::vector<std::wstring> FoldersOfPath()
{
    std::wstring path(32'768, L'\0'); // longer than any
    path.resize(::GetEnvironmentVariableW(L"PATH", path.data(), static_cast<DWORD>(path.size())));
    std::vector<std::wstring> folders;
    for (std::size_t begin = 0; begin < path.size();) {
        const std::size_t end = std::min(path.find(L';', begin), path.size());
        if (end > begin) {
            folders.push_back(path.substr(begin, end - begin));
        }
        begin = end + 1;
    }
    return folders;
}

} // namespace

std::wstring WindowsFolder()
{
    return PathFrom(::GetWindowsDirectoryW);
}

ModuleSearch::ModuleSearch(const std::wstring& programFolder)
{
    const std::wstring windows = WindowsFolder();
    folders = {{programFolder, false},
               {PathFrom(::GetSystemDirectoryW), true},
               {windows + L"\\system", true},
               {windows, true}};
    for (const std::wstring& folder : FoldersOfPath()) {
        folders.push_back({folder, false});
    }
}

std::optional<std::wstring> ModuleSearch::PathOf(const std::wstring& name) const
{
    for (const Folder& folder : folders) {
        std::wstring path = folder.path + L"\\" + name;
        if (FileExists(path) && !FolderExists(path)) {
            return path;
        }
    }
    return std::nullopt;
}

std::optional<FoundModule> ModuleSearch::Find(const std::string& name)
{
    const std::optional<std::wstring> path = PathOf(Wide(name));
    if (!path) {
        return std::nullopt;
    }
    const auto known = read.find(*path);
    if (known != read.end()) {
        return known->second;
    }
    const bool ofWindows = std::ranges::any_of(folders, [&](const Folder& folder) {
        return folder.ofWindows && path->starts_with(folder.path + L"\\");
    });
    return read.insert({*path, {ofWindows, ReadPeFile(*path)}}).first->second;
}

} // namespace kestraboot::tools
