#pragma once

#include "tests/real_windows/test_output.h"

#include <windows.h>

#include <string>
#include <vector>

namespace kestraboot::real_windows
{

/// The display for the person at the machine: lines, and on a console a last line that changes.
class Screen
{
public:
    Screen();

    void Say(const std::string& line);

    /// The progress of a program; overwritten by the next call of either.
    void ShowProgress(const std::string& program, std::size_t tests,
                      const std::vector<TestResult>& results);

private:
    void Write(const std::string& text) const;

    HANDLE output;
    bool isConsole;
    std::size_t shown = 0; ///< characters of the line that changes
};

} // namespace kestraboot::real_windows
