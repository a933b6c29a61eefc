#include "boot/libraries.h"

#include <windows.h>
#include <stdexcept>
#include <string>

namespace
{

constexpr std::size_t kLongestPath =
    32768; // characters that Windows has a path for, terminator included

/// The whole path, however long: a cut path would name another folder.
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
    // Replaces the current folder in the search. Windows' own folder is searched in any case, so
    // the call adds no folder, neither here nor for a program that this one starts. On Windows an
    // empty text, "", does the same; Wine 8 takes it for the current folder.
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
