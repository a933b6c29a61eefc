#include "tests/real_windows/limited_process.h"

#include <stdexcept>

namespace kestraboot::real_windows
{
namespace
{

constexpr DWORD kLongestEnd = 30'000; // milliseconds
constexpr UINT kEndedFromOutside = 97;

HANDLE MakeJob()
{
    const HANDLE job = ::CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    // The second: a test that crashes exits at once, whatever its error mode is. Windows would show a
    // box.
    limits.BasicLimitInformation.LimitFlags =
        JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE | JOB_OBJECT_LIMIT_DIE_ON_UNHANDLED_EXCEPTION;
    if (job == nullptr ||
        !::SetInformationJobObject(job, JobObjectExtendedLimitInformation, &limits, sizeof limits)) {
        throw std::runtime_error("no job object can be created: error " +
                                 std::to_string(::GetLastError()));
    }
    return job;
}

} // namespace

LimitedProcess::LimitedProcess(const std::filesystem::path& program, const std::wstring& arguments,
                               const std::filesystem::path& folder,
                               const std::filesystem::path& outputFile)
    : job(MakeJob())
{
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    const HANDLE out =
        ::CreateFileW(outputFile.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, &inherited,
                      CREATE_ALWAYS, 0, nullptr);
    if (out == INVALID_HANDLE_VALUE) {
        const DWORD error = ::GetLastError();
        ::CloseHandle(job);
        throw std::runtime_error("its output cannot be stored: error " + std::to_string(error));
    }
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = out;
    startup.hStdError = out;
    std::wstring line = L"\"" + program.wstring() + L"\" " + arguments;
    PROCESS_INFORMATION started = {};
    // Windows 7 does not support a job within a job, and Explorer may have put this program into one;
    // this flag leaves that job.
    bool done = false;
    for (const DWORD breakaway : {DWORD{CREATE_BREAKAWAY_FROM_JOB}, DWORD{0}}) {
        done = done || ::CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE,
                                        CREATE_SUSPENDED | CREATE_NO_WINDOW | breakaway, nullptr,
                                        folder.c_str(), &startup, &started) != FALSE;
    }
    DWORD error = ::GetLastError();
    ::CloseHandle(out);
    if (done && !::AssignProcessToJobObject(job, started.hProcess)) {
        error = ::GetLastError();
        ::TerminateProcess(started.hProcess, kEndedFromOutside);
        ::CloseHandle(started.hThread);
        ::CloseHandle(started.hProcess);
        done = false;
    }
    if (!done) {
        ::CloseHandle(job);
        throw std::runtime_error("the program cannot be started: error " + std::to_string(error));
    }
    process = started.hProcess;
    ::ResumeThread(started.hThread);
    ::CloseHandle(started.hThread);
    output = ::CreateFileW(outputFile.c_str(), GENERIC_READ,
                           FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                           OPEN_EXISTING, 0, nullptr);
}

LimitedProcess::~LimitedProcess()
{
    End();
    for (const HANDLE handle : {output, process, job}) {
        ::CloseHandle(handle);
    }
}

bool LimitedProcess::Ended(DWORD milliseconds) const
{
    return ::WaitForSingleObject(process, milliseconds) == WAIT_OBJECT_0;
}

DWORD LimitedProcess::ExitCode() const
{
    DWORD code = 0;
    ::GetExitCodeProcess(process, &code);
    return code;
}

std::string LimitedProcess::MoreOutput()
{
    std::string text;
    char piece[4096];
    DWORD got = 0;
    while (::ReadFile(output, piece, sizeof piece, &got, nullptr) && got != 0) {
        text.append(piece, got);
    }
    return text;
}

void LimitedProcess::End()
{
    ::TerminateJobObject(job, kEndedFromOutside);
    ::WaitForSingleObject(process, kLongestEnd);
}

} // namespace kestraboot::real_windows
