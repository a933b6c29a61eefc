#pragma once

#include "tests/support/temp_folder.h"

#include <windows.h>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// Waits for a program that the code under test starts, a copy of the echo program, and reads its
/// command line.
class EchoChild
{
public:
    /// Copies the echo program to `relative` (folders included) below a folder of its own.
    explicit EchoChild(const std::filesystem::path& relative = L"echo.exe");
    EchoChild(const EchoChild&) = delete;
    EchoChild& operator=(const EchoChild&) = delete;
    ~EchoChild();

    /// The program to start.
    [[nodiscard]] const std::wstring& Program() const noexcept { return program; }
    [[nodiscard]] const std::filesystem::path& Folder() const noexcept { return folder.Path(); }

    /// The command line of a started program; empty if none started within 30 seconds. Each call waits
    /// for one start.
    [[nodiscard]] std::optional<std::wstring> CommandLine() const;

private:
    TempFolder folder;
    std::wstring program;
    std::wstring file;
    HANDLE done;
};

/// A command line as a program's main function sees it.
[[nodiscard]] std::vector<std::wstring> SplitCommandLine(const std::wstring& line);

} // namespace kestraboot::tests
