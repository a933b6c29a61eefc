#include "tests/support/child_test.h"

#include "tests/support/import_patch.h"
#include "tests/support/registry_sandbox.h"
#include "tests/support/sample_application.h"
#include "tests/support/temp_folder.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

constexpr const wchar_t* kTraceFile = L"KESTRABOOT_CHILD_TRACE";

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

} // namespace

ChildEnd RunChildTest(const std::string& test)
{
    constexpr DWORD kLongestChild = 60'000; // milliseconds
    const TempFolder folder;
    const std::filesystem::path trace = folder.Path() / L"trace.txt";
    std::wstring command = L'"' + OwnExecutablePath() +
                           L"\" --gtest_also_run_disabled_tests --gtest_filter=" +
                           std::wstring(test.begin(), test.end());
    ::SetEnvironmentVariableW(kTraceFile, trace.c_str());
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES; // and none given: what the child prints is of no interest
    PROCESS_INFORMATION process = {};
    const BOOL started = ::CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr,
                                          nullptr, &startup, &process);
    const DWORD error = ::GetLastError();
    ::SetEnvironmentVariableW(kTraceFile, nullptr);
    if (!started) {
        throw std::runtime_error("the child cannot be started: error " + std::to_string(error));
    }
    if (::WaitForSingleObject(process.hProcess, kLongestChild) != WAIT_OBJECT_0) {
        ::TerminateProcess(process.hProcess, 99);
    }
    ChildEnd end = {};
    ::GetExitCodeProcess(process.hProcess, &end.exitCode);
    ::CloseHandle(process.hThread);
    ::CloseHandle(process.hProcess);
    RemoveSandboxesOf(process.dwProcessId);
    end.traceLines = ReadLines(trace);
    return end;
}

bool IsChildTest()
{
    return ::GetEnvironmentVariableW(kTraceFile, nullptr, 0) != 0;
}

void CallInChild(const std::function<void()>& operation)
{
    wchar_t path[1024] = {};
    if (::GetEnvironmentVariableW(kTraceFile, path, 1024) == 0) {
        throw std::runtime_error("only for RunChildTest");
    }
    std::ofstream out(std::filesystem::path(path), std::ios::binary);
    const FAKE_IMPORT(OutputDebugStringW) output([&](const wchar_t* line) {
        out.write(reinterpret_cast<const char*>(line),
                  static_cast<std::streamsize>((std::wcslen(line) + 1) * sizeof(wchar_t)));
        out.flush();
    });
    const RegistrySandbox sandbox;
    operation();
    ::TerminateProcess(::GetCurrentProcess(), kOperationReturned);
}

} // namespace kestraboot::tests
