// inherited.exe: an application, or a boot program, that writes a list of its console and handles to a
// file beside it, with its own name and ".txt". It also writes "inherited" to each handle that it was
// given.
#include <windows.h>
#include <io.h>

#include <fstream>
#include <string>

namespace
{

const char* KindOf(HANDLE handle) noexcept
{
    switch (::GetFileType(handle)) {
    case FILE_TYPE_DISK:
        return "file";
    case FILE_TYPE_PIPE:
        return "pipe";
    case FILE_TYPE_CHAR:
        return "device";
    default:
        return "none";
    }
}

} // namespace

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    wchar_t path[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, path, MAX_PATH);
    DWORD processes[1] = {};
    std::string text;
    text += ::GetConsoleProcessList(processes, 1) != 0 ? "attached\n" : "not attached\n";
    constexpr DWORD kHandles[] = {STD_INPUT_HANDLE, STD_OUTPUT_HANDLE, STD_ERROR_HANDLE};
    for (int number = 0; number < 3; ++number) {
        // The handles of Windows, and those of the C runtime.
        for (const HANDLE handle :
             {::GetStdHandle(kHandles[number]), reinterpret_cast<HANDLE>(::_get_osfhandle(number))}) {
            DWORD written = 0;
            ::WriteFile(handle, "inherited", 9, &written, nullptr);
            text += std::string(KindOf(handle)) + ' ';
        }
        text += '\n';
    }
    // The file is renamed into place, so that a reader never finds a part of it.
    const std::wstring report = std::wstring(path) + L".txt";
    const std::wstring part = report + L".part";
    std::ofstream(part.c_str(), std::ios::binary) << text;
    ::MoveFileExW(part.c_str(), report.c_str(), MOVEFILE_REPLACE_EXISTING);
    return 0;
}
