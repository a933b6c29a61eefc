#pragma once

#include <windows.h>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// A console window of this process's own, in place of any that it has, and what is to be seen on it.
/// Programs that are started meanwhile inherit it, as from a prompt. One at a time.
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

    /// As if Ctrl+C were pressed: for every process that has this console. Returns when
    /// this one has got it.
    [[nodiscard]] bool PressCtrlC() const;

private:
    HANDLE screen;
};

} // namespace kestraboot::tests
