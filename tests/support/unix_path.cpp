#include "tests/support/unix_path.h"

#include <windows.h>

namespace kestraboot::tests
{

std::string UnixPath(const std::filesystem::path& folder)
{
    using GetUnixFileName = char*(CDECL*)(const wchar_t*);
    const auto entry = reinterpret_cast<GetUnixFileName>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    char* const path = entry(folder.c_str());
    const std::string copy = path;
    ::HeapFree(::GetProcessHeap(), 0, path);
    return copy;
}

} // namespace kestraboot::tests
