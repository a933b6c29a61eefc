#pragma once

#include <windows.h>
#include <filesystem>
#include <string>

namespace kestraboot::tests
{

/// The output handles of a new process.
enum class WritesOn {
    File,          ///< a file, standard error too; Output() reads it
    Nothing,       ///< nothing at all, as at log-on
    Console,       ///< the handle that Windows derives from this process's console, as at a prompt
    ConsoleHandle, ///< the handle of this process's console, as some shells do
    Nul,           ///< discarded
    FileAlone,     ///< a file; standard error is discarded
};

/// A process that the test starts. This object terminates it at the latest.
class ChildProcess
{
public:
    /// `arguments` follows the quoted program verbatim. The process starts in the program's folder by
    /// default.
    explicit ChildProcess(const std::filesystem::path& program, const std::wstring& arguments = {},
                          WritesOn output = WritesOn::File, const std::filesystem::path& folder = {});
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

    [[nodiscard]] DWORD Id() const noexcept { return information.dwProcessId; }
    [[nodiscard]] HANDLE Handle() const noexcept { return information.hProcess; }
    [[nodiscard]] bool Running() const noexcept;

    /// Waits for the end. If the process does not end, fails the test and returns 0xDEAD.
    DWORD ExitCode(DWORD milliseconds = 45'000);

    /// Its standard output, after its end.
    [[nodiscard]] std::string Output();

private:
    PROCESS_INFORMATION information = {};
    std::filesystem::path outputFile;
};

/// The top-level window of a process by its title; null if it does not appear.
[[nodiscard]] HWND AwaitWindow(DWORD processId, const std::wstring& title, DWORD milliseconds = 30'000);

} // namespace kestraboot::tests
