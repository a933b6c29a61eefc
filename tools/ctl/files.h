// Files, as the library asks for them.
#pragma once

#include <string>

namespace kestraboot::tools
{

/// False for a file that Windows does not show to this program, too: for the library it is not there.
/// Standard error then gives the reason.
[[nodiscard]] bool FileExists(const std::wstring& path);
[[nodiscard]] bool FolderExists(const std::wstring& path);

/// Tells standard error what about a file cannot be read; the reason is Windows' last error.
void TellUnread(const char* what, const std::wstring& path);

} // namespace kestraboot::tools
