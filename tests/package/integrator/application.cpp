// A small compatible application of a maker. It adds its command line to "started.txt" beside it.
#include <windows.h>

#include <cwchar>
#include <string>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    wchar_t program[MAX_PATH] = {};
    ::GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring report = program;
    report.replace(report.rfind(L'\\') + 1, std::wstring::npos, L"started.txt");

    const std::wstring line = ::GetCommandLineW() + std::wstring(L"\n");
    std::string bytes(line.size() * 3, '\0'); // UTF-8
    const int used = ::WideCharToMultiByte(CP_UTF8, 0, line.data(), static_cast<int>(line.size()),
                                           &bytes[0], static_cast<int>(bytes.size()), nullptr, nullptr);
    const HANDLE file =
        ::CreateFileW(report.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                      OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    DWORD written = 0;
    return ::WriteFile(file, bytes.data(), static_cast<DWORD>(used), &written, nullptr) ? 0 : 1;
}
