#include "tests/system/child_process.h"

#include "tests/support/process_window.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

namespace kestraboot::tests
{
namespace
{

/// An inheritable handle; null if the process gets none.
HANDLE OpenToWriteOn(WritesOn output, const wchar_t* file)
{
    if (output == WritesOn::Nothing || output == WritesOn::Console) {
        return nullptr;
    }
    const bool isFile = output == WritesOn::File || output == WritesOn::FileAlone;
    if (!isFile) {
        file = output == WritesOn::Nul ? L"NUL" : L"CONOUT$";
    }
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    return ::CreateFileW(file, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                         isFile ? CREATE_ALWAYS : OPEN_EXISTING, 0, nullptr);
}

} // namespace

ChildProcess::ChildProcess(const std::filesystem::path& program, const std::wstring& arguments,
                           WritesOn output, const std::filesystem::path& folder)
{
    wchar_t name[MAX_PATH] = {};
    ::GetTempFileNameW(std::filesystem::temp_directory_path().c_str(), L"out", 0, name);
    outputFile = name;

    const HANDLE file = OpenToWriteOn(output, name);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    if (file != nullptr) {
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdOutput = file;
        startup.hStdError = output == WritesOn::FileAlone ? nullptr : file;
    }
    std::wstring line = L"\"" + program.wstring() + L"\"" + (arguments.empty() ? L"" : L" ") + arguments;
    const std::wstring startFolder = (folder.empty() ? program.parent_path() : folder).wstring();
    BOOL started = FALSE;
    DWORD error = ERROR_INTERNAL_ERROR;
    // With that error Wine's new process ended before it began: about once in ten thousand starts.
    for (int attempt = 1; attempt <= 3 && !started && error == ERROR_INTERNAL_ERROR; ++attempt) {
        started =
            ::CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, output != WritesOn::Nothing,
                             output == WritesOn::Nothing ? DETACHED_PROCESS : 0, nullptr,
                             startFolder.c_str(), &startup, &information);
        error = ::GetLastError();
    }
    if (file != nullptr) {
        ::CloseHandle(file);
    }
    if (!started) {
        throw std::runtime_error("cannot start " + program.string() + ": error " +
                                 std::to_string(error));
    }
    ::CloseHandle(information.hThread);
}

ChildProcess::~ChildProcess()
{
    if (Running()) {
        ::TerminateProcess(information.hProcess, 0xDEAD);
        ::WaitForSingleObject(information.hProcess, 30'000);
    }
    ::CloseHandle(information.hProcess);
    std::error_code ignored;
    std::filesystem::remove(outputFile, ignored);
}

bool ChildProcess::Running() const noexcept
{
    return ::WaitForSingleObject(information.hProcess, 0) == WAIT_TIMEOUT;
}

DWORD ChildProcess::ExitCode(DWORD milliseconds)
{
    DWORD code = 0xDEAD;
    if (::WaitForSingleObject(information.hProcess, milliseconds) != WAIT_OBJECT_0) {
        ADD_FAILURE() << "the process does not exit";
        return code;
    }
    ::GetExitCodeProcess(information.hProcess, &code);
    return code;
}

std::string ChildProcess::Output()
{
    std::ifstream in(outputFile, std::ios::binary);
    std::string text(std::istreambuf_iterator<char>(in), {});
    std::erase(text, '\r');
    return text;
}

HWND AwaitWindow(DWORD processId, const std::wstring& title, DWORD milliseconds)
{
    for (const ULONGLONG end = ::GetTickCount64() + milliseconds; ::GetTickCount64() <= end;
         ::Sleep(5)) {
        if (const HWND window = FindWindowOf(processId, title.c_str())) {
            return window;
        }
    }
    return nullptr;
}

} // namespace kestraboot::tests
