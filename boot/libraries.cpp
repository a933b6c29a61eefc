#include "boot/libraries.h"

#include <windows.h>
#include <stdexcept>
#include <string>

namespace
{

constexpr std::size_t kLongestPath =
    32768; // characters that Windows has a path for, terminator included

/// The path is whole, however long: cut, it would name another folder.
std::wstring OwnFolder()
{
    std::wstring path(kLongestPath, L'\0');
    path.resize(::GetModuleFileNameW(nullptr, path.data(), kLongestPath));
    const std::size_t folderEnd = path.find_last_of(L'\\');
    path.resize(folderEnd == std::wstring::npos ? 0 : folderEnd + 1); // "C:\" is a folder, "C:" is not
    return path;
}

std::wstring SystemFolder()
{
    wchar_t folder[MAX_PATH] = {};
    const UINT length = ::GetSystemDirectoryW(folder, MAX_PATH);
    return length < MAX_PATH ? folder : L"";
}

} // namespace

void SearchNoLibraryInCurrentFolder()
{
    // Takes the place of the current folder in the search. Windows' own is searched in any case, so it
    // adds none, here or for a program that is started from here. No folder at all, "", does the same on
    // Windows; Wine 8 takes that for the current one.
    ::SetDllDirectoryW(SystemFolder().c_str());
}

bool WorkInOwnFolder()
{
    if (::SetCurrentDirectoryW(OwnFolder().c_str())) {
        return true;
    }
    if (!::SetCurrentDirectoryW(SystemFolder().c_str())) {
        throw std::runtime_error("no folder can be made the current one");
    }
    return false;
}
