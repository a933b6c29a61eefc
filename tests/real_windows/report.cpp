#include "tests/real_windows/report.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>

namespace kestraboot::real_windows
{
namespace
{

std::size_t CountIn(const std::vector<ProgramResults>& programs, Outcome outcome)
{
    std::size_t count = 0;
    for (const ProgramResults& program : programs) {
        count +=
            static_cast<std::size_t>(std::ranges::count(program.tests, outcome, &TestResult::outcome));
    }
    return count;
}

/// Notepad reads this format since Windows 95: a mark for UTF-8, and two characters at the end of a
/// line.
void Write(const std::filesystem::path& file, const std::string& mark, const std::string& text)
{
    std::ofstream out(file, std::ios::binary);
    out << mark;
    for (const char character : text) {
        out << (character == '\n' ? "\r\n" : std::string(1, character));
    }
    out.close();
    if (!out) {
        throw std::runtime_error(file.filename().string() + " cannot be written");
    }
}

std::string Indented(const std::string& text)
{
    std::string indented;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        indented += "        " + line + '\n';
    }
    return indented;
}

void AddFailures(const Report& report, std::string& text)
{
    text += "\nFailed\n";
    for (const ProgramResults& program : report.programs) {
        for (const TestResult& test : program.tests) {
            if (test.outcome == Outcome::Failed) {
                text += "    " + program.program + "  " + test.name + '\n' + Indented(test.text);
            }
        }
    }
    text += report.Count(Outcome::Failed) == 0 ? "    none\n" : "";
}

void AddReasons(const Report& report, std::string& text)
{
    std::map<std::string, std::size_t> reasons;
    for (const auto* const programs : {&report.programs, &report.leftOut}) {
        for (const ProgramResults& program : *programs) {
            for (const TestResult& test : program.tests) {
                reasons[test.text] += test.outcome == Outcome::Skipped ? 1 : 0;
            }
        }
    }
    text += "\nSkipped, and why\n";
    for (const auto& [reason, count] : reasons) {
        if (count != 0) {
            const std::string line = reason.substr(0, reason.find_last_not_of('\n') + 1);
            text += "    " + std::to_string(count) + "  " + line + '\n';
        }
    }
}

void AddTests(const std::vector<ProgramResults>& programs, std::string& text)
{
    for (const ProgramResults& program : programs) {
        text += "    " + program.program + '\n';
        for (const TestResult& test : program.tests) {
            char line[64] = {};
            const char* const word = test.outcome == Outcome::Passed   ? "passed"
                                     : test.outcome == Outcome::Failed ? "FAILED"
                                                                       : "skipped";
            std::snprintf(line, sizeof line, "        %-8s %8lld ms  ", word, test.milliseconds);
            text += line + test.name + '\n';
        }
    }
}

} // namespace

std::size_t Report::Count(Outcome outcome) const
{
    return CountIn(programs, outcome) + CountIn(leftOut, outcome);
}

std::string Report::Summary() const
{
    return std::to_string(Count(Outcome::Passed)) + " passed, " +
           std::to_string(Count(Outcome::Failed)) + " failed, " +
           std::to_string(Count(Outcome::Skipped)) + " skipped";
}

void WriteText(const Report& report, const std::filesystem::path& file)
{
    std::string text = "The tests of kestraboot on this machine\n\n";
    for (const auto& [name, value] : report.facts) {
        text += name + std::string(name.size() < 12 ? 12 - name.size() : 1, ' ') + value + '\n';
    }
    text += "\n" + report.Summary() + '\n';
    AddFailures(report, text);
    AddReasons(report, text);
    text += "\nEach test\n";
    AddTests(report.programs, text);
    text += "\nNot in the archive\n";
    AddTests(report.leftOut, text);
    Write(file, "\xEF\xBB\xBF", text);
}

} // namespace kestraboot::real_windows
