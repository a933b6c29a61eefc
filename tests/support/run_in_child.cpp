#include "tests/support/run_in_child.h"

#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

// Both are set for a child alone.
constexpr const wchar_t* kTraceFile = L"KESTRABOOT_CHILD_TRACE";
constexpr const wchar_t* kCall =
    L"KESTRABOOT_CHILD_CALL"; // the number of the call of RunInChild in the test

std::wstring Environment(const wchar_t* name)
{
    wchar_t value[1024] = {};
    ::GetEnvironmentVariableW(name, value, 1024);
    return value;
}

/// Counts the calls within a run of the test; a test may be repeated.
int NumberOfThisCall(const testing::TestInfo* test)
{
    static testing::TimeInMillis lastBegin = 0;
    static int number = 0;
    const testing::TimeInMillis begin = test->result()->start_timestamp();
    number = begin == lastBegin ? number + 1 : 1;
    lastBegin = begin;
    return number;
}

std::vector<std::wstring> ReadLines(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    std::vector<std::wstring> lines(1);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += sizeof(wchar_t)) {
        const wchar_t character = *reinterpret_cast<const wchar_t*>(bytes.data() + i);
        if (character == L'\0') {
            lines.emplace_back();
        } else {
            lines.back() += character;
        }
    }
    lines.pop_back();
    return lines;
}

/// Ends this process.
void RunAsTheChild(const std::function<void()>& operation)
{
    std::ofstream out(std::filesystem::path(Environment(kTraceFile)), std::ios::binary);
    const FAKE_IMPORT(OutputDebugStringW) output([&](const wchar_t* line) {
        out.write(reinterpret_cast<const char*>(line),
                  static_cast<std::streamsize>((std::wcslen(line) + 1) * sizeof(wchar_t)));
        out.flush();
    });
    const RegistrySandbox sandbox; // the parent removes it
    operation();
    ::TerminateProcess(::GetCurrentProcess(), kOperationReturned);
}

/// Waits for the end; returns the child's process identifier and exit code.
std::pair<DWORD, DWORD> Run(std::wstring command)
{
    constexpr DWORD kLongestChild = 60'000; // milliseconds
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES; // and none given: what the child prints is of no interest
    PROCESS_INFORMATION process = {};
    if (!::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                          &startup, &process)) {
        throw std::runtime_error("the child cannot be started: error " +
                                 std::to_string(::GetLastError()));
    }
    if (::WaitForSingleObject(process.hProcess, kLongestChild) != WAIT_OBJECT_0) {
        ::TerminateProcess(process.hProcess, 99);
        ::WaitForSingleObject(process.hProcess, kLongestChild);
    }
    DWORD exitCode = 0;
    ::GetExitCodeProcess(process.hProcess, &exitCode);
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    return {process.dwProcessId, exitCode};
}

} // namespace

ChildEnd RunInChild(const std::function<void()>& operation)
{
    const testing::TestInfo* const test = testing::UnitTest::GetInstance()->current_test_info();
    const std::wstring call = std::to_wstring(NumberOfThisCall(test));
    if (IsChild()) {
        if (call == Environment(kCall)) {
            RunAsTheChild(operation);
        }
        return {}; // an earlier call of the test, made by the parent
    }
    const TempFolder folder;
    const std::filesystem::path trace = folder.Path() / L"trace.txt";
    const std::string name = std::string(test->test_suite_name()) + '.' + test->name();
    ::SetEnvironmentVariableW(kTraceFile, trace.c_str());
    ::SetEnvironmentVariableW(kCall, call.c_str());
    const auto [processId, exitCode] =
        Run(L'"' + OwnExecutablePath() + L"\" --gtest_filter=" + std::wstring(name.begin(), name.end()));
    ::SetEnvironmentVariableW(kTraceFile, nullptr);
    ::SetEnvironmentVariableW(kCall, nullptr);
    RemoveSandboxesOf(processId);
    return {exitCode, ReadLines(trace)};
}

bool IsChild()
{
    return ::GetEnvironmentVariableW(kCall, nullptr, 0) != 0;
}

} // namespace kestraboot::tests
