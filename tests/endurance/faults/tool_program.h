// One of the tools: its objects in a library of their own, so that a test's process has its import
// table, with the standard output and the standard error in the journal.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// The module under test while it lives; one at a time. The library stays in the process.
class ToolProgram
{
public:
    explicit ToolProgram(const wchar_t* library);
    ToolProgram(const ToolProgram&) = delete;
    ToolProgram& operator=(const ToolProgram&) = delete;
    ~ToolProgram();

    [[nodiscard]] HMODULE Module() const noexcept { return module; }

    void SetArguments(const std::vector<std::wstring>& arguments);

    /// Whether standard output is a console, which has colours, or the target of a redirection.
    static void SetConsole(bool isConsole) noexcept;

    /// Runs it inside an Armed scope. In the journal, each line of standard output begins with "out",
    /// and each of standard error with "err"; then comes the exit code.
    void Run() const;

private:
    HMODULE module;
    std::vector<std::wstring> words;
    struct Patches;
    std::unique_ptr<Patches> patches;
};

} // namespace kestraboot::tests
