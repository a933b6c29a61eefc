// A program that reports its command line: it writes the line, as UTF-16, to the file that the
// environment variable KESTRABOOT_ECHO_FILE names, then sets the event that KESTRABOOT_ECHO_EVENT names.
// It needs no DLL except Windows' own, so that it runs in any folder.
#include <windows.h>
#include <cwchar>

int main()
{
    wchar_t file[1024] = {};
    wchar_t event[256] = {};
    if (::GetEnvironmentVariableW(L"KESTRABOOT_ECHO_FILE", file, 1024) == 0 ||
        ::GetEnvironmentVariableW(L"KESTRABOOT_ECHO_EVENT", event, 256) == 0) {
        return 2;
    }
    const HANDLE out =
        ::CreateFileW(file, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (out == INVALID_HANDLE_VALUE) {
        return 3;
    }
    const wchar_t* const line = ::GetCommandLineW();
    DWORD written = 0;
    ::WriteFile(out, line, static_cast<DWORD>(std::wcslen(line) * sizeof(wchar_t)), &written, nullptr);
    ::CloseHandle(out);

    const HANDLE done = ::OpenEventW(EVENT_MODIFY_STATE, FALSE, event);
    if (done == nullptr) {
        return 4;
    }
    ::SetEvent(done);
    ::CloseHandle(done);
    return 0;
}
