#include "tests/support/host_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

constexpr std::chrono::seconds kLongestWait(30);
constexpr UINT kHangs = 97; // already reported

HANDLE MakePipe(const std::wstring& name, DWORD direction)
{
    const HANDLE pipe = ::CreateNamedPipeW(name.c_str(), direction | FILE_FLAG_FIRST_PIPE_INSTANCE,
                                           PIPE_TYPE_BYTE | PIPE_WAIT, 1, 65'536, 65'536, 0, nullptr);
    if (pipe == INVALID_HANDLE_VALUE) {
        throw std::runtime_error("no pipe");
    }
    return pipe;
}

} // namespace

HostProcess::HostProcess(const std::filesystem::path& program, const std::filesystem::path& folder)
{
    static int count = 0;
    pipe = L"\\\\.\\pipe\\test-host-" + std::to_wstring(::GetCurrentProcessId()) + L"-" +
           std::to_wstring(count++);
    input = MakePipe(pipe + L"-in", PIPE_ACCESS_OUTBOUND);
    output = MakePipe(pipe + L"-out", PIPE_ACCESS_INBOUND);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    const std::filesystem::path path = ProgramFolder() / program;
    std::wstring command = L'"' + path.wstring() + L"\" " + pipe;
    if (!::CreateProcessW(path.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                          folder.c_str(), &startup, &process)) {
        throw std::runtime_error("the host does not start: error " + std::to_string(::GetLastError()));
    }
    receiver = std::thread([this] {
        ReceiveLines();
    });
}

HostProcess::~HostProcess()
{
    ::CloseHandle(input); // this ends it
    if (::WaitForSingleObject(process.hProcess, timeToEnd) != WAIT_OBJECT_0) {
        ADD_FAILURE() << "the host hangs: it does not end when it is told to";
        ::TerminateProcess(process.hProcess, kHangs);
        ::WaitForSingleObject(process.hProcess, timeToEnd);
    }
    DWORD code = kHangs;
    ::GetExitCodeProcess(process.hProcess, &code);
    EXPECT_TRUE(code == 0 || code == kHangs) << "the host ended by itself, or badly: code " << code;
    // Releases a receiver that still waits for a host to connect.
    const HANDLE instead =
        ::CreateFileW((pipe + L"-out").c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (instead != INVALID_HANDLE_VALUE) {
        ::CloseHandle(instead);
    }
    receiver.join();
    ::CloseHandle(output);
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
}

void HostProcess::Send(const std::string& command)
{
    const std::string line = command + "\n";
    DWORD written = 0;
    if (!::WriteFile(input, line.data(), static_cast<DWORD>(line.size()), &written, nullptr)) {
        throw std::runtime_error("the host takes no commands: error " +
                                 std::to_string(::GetLastError()));
    }
}

bool HostProcess::WaitForCount(const std::string& line, int count)
{
    std::unique_lock lock(mutex);
    return more.wait_for(lock, kLongestWait, [&] {
        return ended || counts[line] >= count;
    }) && counts[line] >= count;
}

std::string HostProcess::Read()
{
    std::unique_lock lock(mutex);
    more.wait_for(lock, kLongestWait, [this] {
        return ended || read < lines.size();
    });
    if (read == lines.size()) {
        throw std::runtime_error(ended ? "the host process is gone" : "the host writes no further line");
    }
    return lines[read++];
}

std::string HostProcess::ReadUntil(const std::string& beginning)
{
    for (;;) {
        std::string line = Read();
        if (line.starts_with(beginning)) {
            return line;
        }
    }
}

std::vector<std::string> HostProcess::Lines(const std::string& beginning) const
{
    const std::lock_guard lock(mutex);
    std::vector<std::string> matching;
    std::ranges::copy_if(lines, std::back_inserter(matching), [&](const std::string& line) {
        return line.starts_with(beginning);
    });
    return matching;
}

void HostProcess::Forget()
{
    const std::lock_guard lock(mutex);
    lines.clear();
    counts.clear();
    read = 0;
}

void HostProcess::ReceiveLines()
{
    std::string pending;
    char piece[4096];
    DWORD got = 0;
    static_cast<void>(::ConnectNamedPipe(output, nullptr));
    while (::ReadFile(output, piece, sizeof piece, &got, nullptr) && got != 0) {
        const std::lock_guard lock(mutex);
        pending.append(piece, got);
        for (std::size_t end = 0; (end = pending.find('\n')) != std::string::npos;) {
            const std::string line = pending.substr(0, end);
            lines.push_back(line);
            ++counts[line];
            pending.erase(0, end + 1);
        }
        more.notify_all();
    }
    const std::lock_guard lock(mutex);
    ended = true;
    more.notify_all();
}

} // namespace kestraboot::tests
