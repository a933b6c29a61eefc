#pragma once

#include <windows.h>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// A console window of this process's own, instead of any that it has, and its visible text. Programs
/// that start meanwhile inherit it, as from a prompt. One at a time.
class ConsoleWindow
{
public:
    ConsoleWindow();
    ConsoleWindow(const ConsoleWindow&) = delete;
    ConsoleWindow& operator=(const ConsoleWindow&) = delete;
    ~ConsoleWindow();

    /// The screen down to the line of the cursor, without the blanks that end a line.
    [[nodiscard]] std::string Text() const;

    /// Whether that process has this console.
    [[nodiscard]] static bool Has(DWORD processId);

    /// Sends Ctrl+C to every process that has this console. Returns when this one has received it.
    [[nodiscard]] bool PressCtrlC() const;

private:
    HANDLE screen;
};

} // namespace kestraboot::tests
