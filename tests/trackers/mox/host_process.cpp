#include "tests/trackers/mox/host_process.h"

#include "tests/trackers/mox/program_folder.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <system_error>
#include <utility>

namespace kestraboot::tests
{
namespace
{

void Require(BOOL done, const char* what)
{
    if (!done) {
        throw std::system_error(static_cast<int>(::GetLastError()), std::system_category(), what);
    }
}

/// One end for the process, which inherits it, and the other for the tests.
struct Pipe {
    Pipe(bool processReads)
    {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        HANDLE reading = nullptr;
        HANDLE writing = nullptr;
        Require(::CreatePipe(&reading, &writing, &inherited, 1 << 20), "CreatePipe");
        theirs = processReads ? reading : writing;
        ours = processReads ? writing : reading;
        ::SetHandleInformation(ours, HANDLE_FLAG_INHERIT, 0);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;
    ~Pipe() { ::CloseHandle(theirs); }

    HANDLE theirs = nullptr;
    HANDLE ours = nullptr;
};

PROCESS_INFORMATION Start(std::wstring commandLine, const wchar_t* folder, STARTUPINFOW& startup)
{
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started = {};
    Require(::CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, TRUE, 0, nullptr, folder,
                             &startup, &started),
            "CreateProcessW");
    ::CloseHandle(started.hThread);
    return started;
}

} // namespace

HostProcess::HostProcess(const std::filesystem::path& folder)
{
    const Pipe input(true);
    const Pipe output(false);
    toProcess = input.ours;
    fromProcess = output.ours;
    STARTUPINFOW startup = {};
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = input.theirs;
    startup.hStdOutput = output.theirs;
    startup.hStdError = output.theirs;
    process = Start((ProgramFolder() / "mox_test_host.exe").wstring(), folder.c_str(), startup).hProcess;
}

HostProcess::~HostProcess()
{
    DWORD written = 0;
    ::WriteFile(toProcess, "quit\n", 5, &written, nullptr);
    if (::WaitForSingleObject(process, 30000) != WAIT_OBJECT_0) {
        ::TerminateProcess(process, 99);
        ::WaitForSingleObject(process, 30000);
    }
    DWORD exitCode = 0;
    ::GetExitCodeProcess(process, &exitCode);
    EXPECT_EQ(exitCode, 0U) << "the host process did not end well";
    for (const HANDLE handle : {process, toProcess, fromProcess}) {
        ::CloseHandle(handle);
    }
}

std::string HostProcess::Read()
{
    for (;;) {
        const std::size_t end = unread.find('\n');
        if (end != std::string::npos) {
            std::string line = unread.substr(0, end);
            unread.erase(0, end + 1);
            if (line.ends_with('\r')) {
                line.pop_back();
            }
            said.push_back(line);
            return line;
        }
        char piece[4096];
        DWORD got = 0;
        Require(::ReadFile(fromProcess, piece, sizeof piece, &got, nullptr), "the host process is gone");
        unread.append(piece, got);
    }
}

void HostProcess::Await(const std::string& line)
{
    while (Read() != line) {
    }
}

void HostProcess::Send(const std::string& command)
{
    const std::string line = command + "\n";
    DWORD written = 0;
    Require(::WriteFile(toProcess, line.data(), static_cast<DWORD>(line.size()), &written, nullptr),
            "the host process does not listen");
}

std::string HostProcess::Ask(const std::string& command, const std::string& answerBegins)
{
    Send(command);
    for (;;) {
        std::string line = Read();
        if (line.starts_with(answerBegins)) {
            return line;
        }
    }
}

bool HostProcess::IsLoaded(const std::string& plugin)
{
    return Ask("loaded .\\moxplugins\\" + plugin + ".mox", "loaded ") == "loaded yes";
}

unsigned RunProgram(const std::wstring& commandLine)
{
    STARTUPINFOW startup = {};
    const HANDLE process = Start((ProgramFolder() / commandLine).wstring(), nullptr, startup).hProcess;
    DWORD exitCode = 99;
    if (::WaitForSingleObject(process, 60000) == WAIT_OBJECT_0) {
        ::GetExitCodeProcess(process, &exitCode);
    }
    ::CloseHandle(process);
    return exitCode;
}

} // namespace kestraboot::tests
