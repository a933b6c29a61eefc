#include "tests/system/imaging/host_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <dbt.h>
#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

constexpr std::chrono::seconds kLongestWait(30);
constexpr DWORD kLongestWaitMilliseconds = 30'000;
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

struct WindowSearch {
    DWORD processId;
    HWND found;
};

BOOL CALLBACK LookAt(HWND window, LPARAM search)
{
    auto& wanted = *reinterpret_cast<WindowSearch*>(search);
    DWORD owner = 0;
    ::GetWindowThreadProcessId(window, &owner);
    wchar_t title[64] = {};
    ::GetWindowTextW(window, title, 64);
    if (owner == wanted.processId && std::wstring(title) == L"STITrackerWindow") {
        wanted.found = window;
        return FALSE;
    }
    return TRUE;
}

} // namespace

HostProcess::HostProcess(const std::wstring& program)
{
    static int count = 0;
    pipe = L"\\\\.\\pipe\\imaging-host-" + std::to_wstring(::GetCurrentProcessId()) + L"-" +
           std::to_wstring(count++);
    input = MakePipe(pipe + L"-in", PIPE_ACCESS_OUTBOUND);
    output = MakePipe(pipe + L"-out", PIPE_ACCESS_INBOUND);
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    const std::wstring path = OwnFolder() + program;
    std::wstring command = L'"' + path + L"\" " + pipe;
    if (!::CreateProcessW(path.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                          OwnFolder().c_str(), &startup, &process)) {
        throw std::runtime_error("the host does not start: error " + std::to_string(::GetLastError()));
    }
    reader = std::thread([this] {
        ReadLines();
    });
    if (!WaitFor("ready ")) {
        End();
        throw std::runtime_error("the host does not get ready");
    }
}

HostProcess::~HostProcess()
{
    End();
}

void HostProcess::End()
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
    // Releases a reader that still waits for a host to connect.
    const HANDLE instead =
        ::CreateFileW((pipe + L"-out").c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (instead != INVALID_HANDLE_VALUE) {
        ::CloseHandle(instead);
    }
    reader.join();
    ::CloseHandle(output);
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
}

bool HostProcess::WaitForCount(const std::string& line, int count)
{
    std::unique_lock lock(mutex);
    return more.wait_for(lock, kLongestWait, [&] {
        return ended || counts[line] >= count;
    }) && counts[line] >= count;
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
    questions = 0;
}

bool HostProcess::HasTrackerWindow()
{
    if (trackerWindow == nullptr) {
        WindowSearch search = {process.dwProcessId, nullptr};
        ::EnumWindows(LookAt, reinterpret_cast<LPARAM>(&search));
        trackerWindow = search.found;
    }
    return trackerWindow != nullptr;
}

bool HostProcess::AwaitTrackerWindow()
{
    // The window appears after the line that reports whether devices will be detected.
    for (const ULONGLONG end = ::GetTickCount64() + kLongestWaitMilliseconds; !HasTrackerWindow();
         ::Sleep(5)) {
        if (::GetTickCount64() > end) {
            return false;
        }
    }
    return true;
}

bool HostProcess::NotifyDeviceChange()
{
    return AwaitTrackerWindow() &&
           ::PostMessageW(trackerWindow, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0) != FALSE;
}

bool HostProcess::ServeDeviceChange()
{
    DWORD_PTR answer = 0;
    return AwaitTrackerWindow() &&
           ::SendMessageTimeoutW(trackerWindow, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0, SMTO_NORMAL,
                                 kLongestWaitMilliseconds, &answer) != 0 &&
           CatchUp();
}

bool HostProcess::CatchUp()
{
    DWORD written = 0;
    return ::WriteFile(input, "?", 1, &written, nullptr) != FALSE && WaitForCount("here ", ++questions);
}

void HostProcess::ReadLines()
{
    std::string pending;
    char piece[4096];
    DWORD got = 0;
    static_cast<void>(::ConnectNamedPipe(output, nullptr));
    while (::ReadFile(output, piece, sizeof piece, &got, nullptr) && got != 0) {
        const std::lock_guard lock(mutex);
        pending.append(piece, got);
        for (std::size_t end = 0; (end = pending.find('\n')) != std::string::npos;) {
            std::string line = pending.substr(0, end);
            if (line.ends_with('\r')) {
                line.pop_back();
            }
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

std::wstring OwnFolder()
{
    wchar_t path[1024] = {};
    ::GetModuleFileNameW(nullptr, path, 1023);
    const std::wstring whole = path;
    return whole.substr(0, whole.find_last_of(L'\\') + 1);
}

} // namespace kestraboot::tests
