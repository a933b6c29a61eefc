#include "tests/real_windows/screen.h"

#include <algorithm>

namespace kestraboot::real_windows
{

Screen::Screen() : output(::GetStdHandle(STD_OUTPUT_HANDLE))
{
    DWORD mode = 0;
    isConsole = ::GetConsoleMode(output, &mode) != FALSE;
}

void Screen::Say(const std::string& line)
{
    Write((shown != 0 ? "\r" + std::string(shown, ' ') + "\r" : "") + line + "\r\n");
    shown = 0;
}

void Screen::ShowProgress(const std::string& program, std::size_t tests,
                          const std::vector<TestResult>& results)
{
    if (!isConsole) {
        return;
    }
    const auto failed = std::ranges::count(results, Outcome::Failed, &TestResult::outcome);
    std::string line = "    " + program + ": " + std::to_string(results.size()) + " of " +
                       std::to_string(tests) +
                       (failed != 0 ? ", failed: " + std::to_string(failed) : "");
    const std::size_t length = line.size();
    line.resize((std::max)(length, shown), ' ');
    Write('\r' + line);
    shown = length;
}

void Screen::Write(const std::string& text) const
{
    DWORD written = 0;
    ::WriteFile(output, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

} // namespace kestraboot::real_windows
