#pragma once

#include <windows.h>
#include <filesystem>
#include <string>

namespace kestraboot::tests
{

/// A process that the test starts; ended with this object at the latest.
class ChildProcess
{
public:
    /// `arguments` follows the quoted program as it stands. Standard output is kept; with
    /// `withConsole` false the process has no standard output at all, as at log-on.
    explicit ChildProcess(const std::filesystem::path& program, const std::wstring& arguments = {},
                          bool withOutput = true);
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

    [[nodiscard]] DWORD Id() const noexcept { return information.dwProcessId; }
    [[nodiscard]] HANDLE Handle() const noexcept { return information.hProcess; }
    [[nodiscard]] bool Running() const noexcept;

    /// Waits for the end. A process that does not end makes the test fail and answers 0xDEAD.
    DWORD ExitCode(DWORD milliseconds = 45'000);

    /// What it wrote on standard output, after its end.
    [[nodiscard]] std::string Output();

private:
    PROCESS_INFORMATION information = {};
    std::filesystem::path outputFile;
};

/// The top-level window of a process by its title; null when it does not come.
[[nodiscard]] HWND AwaitWindow(DWORD processId, const std::wstring& title, DWORD milliseconds = 30'000);

} // namespace kestraboot::tests
