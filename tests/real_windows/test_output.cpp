#include "tests/real_windows/test_output.h"

#include <cstdlib>
#include <sstream>

namespace kestraboot::real_windows
{
namespace
{

constexpr std::size_t kMostText =
    8'000; // of one test; otherwise a report would be as long as a flood of failures

constexpr std::string_view kBegins = "[ RUN      ] ";

struct Ending {
    std::string_view mark;
    Outcome outcome;
};
constexpr Ending kEndings[] = {{"[       OK ] ", Outcome::Passed},
                               {"[  FAILED  ] ", Outcome::Failed},
                               {"[  SKIPPED ] ", Outcome::Skipped}};

void AddText(std::string& text, const std::string& line)
{
    if (text.size() < kMostText) {
        text += line.substr(0, kMostText) + '\n';
    }
}

} // namespace

bool TestOutput::Add(std::string_view piece)
{
    unread += piece;
    bool moved = false;
    for (std::size_t end = 0; (end = unread.find('\n')) != std::string::npos;) {
        std::string line = unread.substr(0, end);
        unread.erase(0, end + 1);
        while (line.ends_with('\r')) {
            line.pop_back();
        }
        moved = TakeLine(line) || moved;
    }
    return moved;
}

bool TestOutput::TakeLine(const std::string& line)
{
    if (!running) {
        through = through || (line.starts_with("[==========] ") && line.ends_with(" ms total)"));
        // The tested code may have written the beginning of the line.
        const std::size_t begins = line.find(kBegins);
        if (begins == std::string::npos) {
            AddText(outside, line);
            return false;
        }
        running = TestResult{line.substr(begins + kBegins.size()), Outcome::Failed, 0, {}};
        return true;
    }
    for (const Ending& ending : kEndings) {
        // The name is followed by the time, or by the value of its parameter and the time.
        const std::size_t at = line.find(std::string(ending.mark) + running->name);
        if (at == std::string::npos) {
            continue;
        }
        const std::size_t time = line.rfind('(');
        running->outcome = ending.outcome;
        running->milliseconds =
            time == std::string::npos ? 0 : std::strtoll(line.c_str() + time + 1, nullptr, 10);
        if (ending.outcome == Outcome::Passed) {
            running->text.clear();
        }
        finished.push_back(*running);
        running.reset();
        return true;
    }
    AddText(running->text, line);
    return false;
}

std::vector<std::string> ListedTests(const std::string& output)
{
    std::vector<std::string> names;
    std::istringstream lines(output);
    std::string suite;
    for (std::string line; std::getline(lines, line);) {
        std::string name;
        std::istringstream(line) >> name; // without the parameter's value that may follow
        if (!line.starts_with("  ")) {
            suite = name.ends_with('.') ? name : "";
        } else if (!suite.empty() && !name.empty()) {
            names.push_back(suite + name);
        }
    }
    return names;
}

} // namespace kestraboot::real_windows
