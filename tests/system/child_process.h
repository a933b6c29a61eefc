#pragma once

#include <windows.h>
#include <filesystem>
#include <string>

namespace kestraboot::tests
{

/// What a process is given to write on.
enum class WritesOn {
    File,          ///< a file, standard error too; Output() reads it
    Nothing,       ///< nothing at all, as at log-on
    Console,       ///< what Windows makes of this process's console, as at a prompt
    ConsoleHandle, ///< the handle of this process's console, as some shells do
    Nul,           ///< thrown away
    FileAlone,     ///< a file, and standard error is thrown away
};

/// A process that the test starts; ended with this object at the latest.
class ChildProcess
{
public:
    /// `arguments` follows the quoted program as it stands. It starts in the program's folder unless
    /// another is given.
    explicit ChildProcess(const std::filesystem::path& program, const std::wstring& arguments = {},
                          WritesOn output = WritesOn::File, const std::filesystem::path& folder = {});
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
