#include "tools/ctl/files.h"

#include "tools/common/utf8.h"
#include "tools/common/windows_error.h"
#include "tools/ctl/unread.h"

#include <windows.h>
#include <shlwapi.h>

namespace kestraboot::tools
{
namespace
{

bool TellUnlessMissing(bool exists, const std::wstring& path)
{
    if (!exists && ::GetLastError() == ERROR_ACCESS_DENIED) {
        TellUnread("see", path);
    }
    return exists;
}

} // namespace

bool FileExists(const std::wstring& path)
{
    return TellUnlessMissing(::PathFileExistsW(path.c_str()) != FALSE, path);
}

bool FolderExists(const std::wstring& path)
{
    ::SetLastError(ERROR_SUCCESS); // unchanged if it is a file
    return TellUnlessMissing(::PathIsDirectoryW(path.c_str()) != FALSE, path);
}

void TellUnread(const char* what, const std::wstring& path)
{
    const DWORD error = ::GetLastError();
    TellUnread(std::string("cannot ") + what + " " + ToUtf8(path) + ": " + WindowsErrorText(error));
}

} // namespace kestraboot::tools
