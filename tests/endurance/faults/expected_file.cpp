#include "tests/endurance/faults/expected_file.h"

#include "tests/support/source_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string_view>

namespace kestraboot::tests
{
namespace
{

std::filesystem::path ExpectedFaults()
{
    return SourceFile("tests/endurance/faults/expected");
}

std::filesystem::path FileOf(const std::string& scene)
{
    return ExpectedFaults() / (scene + ".txt");
}

std::string Contents(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::string Joined(const std::vector<std::string>& names)
{
    std::string joined;
    for (const std::string& name : names) {
        joined += (joined.empty() ? "" : ", ") + name;
    }
    return joined;
}

std::string Range(int first, int last)
{
    return first == last ? std::to_string(first) : std::to_string(first) + '-' + std::to_string(last);
}

/// Occurrences with the same failures, such as "1, 4-7", by those failures.
std::map<std::string, std::string> Ranges(const std::map<int, std::vector<std::string>>& occurrences)
{
    std::map<std::string, std::string> ranges;
    for (auto at = occurrences.begin(); at != occurrences.end();) {
        const auto first = at;
        int last = first->first;
        while (++at != occurrences.end() && at->first == last + 1 && at->second == first->second) {
            last = at->first;
        }
        std::string& range = ranges[Joined(first->second)];
        range += (range.empty() ? "" : ", ") + Range(first->first, last);
    }
    return ranges;
}

std::vector<std::string> Lines(const std::string& text)
{
    std::istringstream in(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

constexpr std::string_view kAllocationsMark = "Takes memory so often: ";
constexpr std::string_view kFailureMark = "  * ";
constexpr std::string_view kLineMark = "    ";

/// The outcome of each failure, by a name such as "RegOpenKeyExW 3: denied"; the empty name has the
/// outcome without a failure.
using Expectations = std::map<std::string, std::string>;

/// Adds the failures of one line, such as "RegOpenKeyExW 1, 4-5: denied, not found".
void AddNames(const std::string& line, std::vector<std::string>& names)
{
    const std::size_t blank = line.find(' ');
    const std::size_t colon = line.find(": ");
    std::istringstream ranges(line.substr(blank, colon - blank));
    for (std::string range; std::getline(ranges, range, ',');) {
        const int first = std::stoi(range);
        const std::size_t dash = range.find('-');
        const int last = dash == std::string::npos ? first : std::stoi(range.substr(dash + 1));
        for (int occurrence = first; occurrence <= last; ++occurrence) {
            std::istringstream failures(line.substr(colon + 2));
            for (std::string failure; std::getline(failures >> std::ws, failure, ',');) {
                names.push_back(line.substr(0, blank + 1) + std::to_string(occurrence) + ": " + failure);
            }
        }
    }
}

Expectations Parse(const std::string& text)
{
    Expectations parsed;
    std::vector<std::string> names;
    std::string outcome;
    bool isFirst = true;
    for (const std::string& line : Lines(text)) {
        if (line.starts_with(kFailureMark)) {
            AddNames(line.substr(kFailureMark.size()), names);
        } else if (line.starts_with(kLineMark)) {
            outcome += line.substr(kLineMark.size()) + '\n';
        } else if (line.empty()) {
            for (const std::string& name : names) {
                parsed[name] = isFirst ? "" : outcome;
            }
            if (isFirst) {
                parsed[""] = outcome;
            }
            isFirst = false;
            names.clear();
            outcome.clear();
        }
    }
    return parsed;
}

/// "RegOpenKeyExW 3: denied"; an occurrence in a group of the file has the same name.
std::string NameOf(const SweptCall& call, const Failure& failure)
{
    return std::string(call.function) + ' ' + std::to_string(call.occurrence) + ": " + failure.name;
}

int Allocations(const std::string& text)
{
    return text.starts_with(kAllocationsMark) ? std::stoi(text.substr(kAllocationsMark.size())) : -1;
}

/// The lines of only one of the two, in their order.
std::string Difference(const std::vector<std::string>& before, const std::vector<std::string>& after)
{
    // The length of the longest common sequence of both from there on.
    std::vector<std::vector<int>> common(before.size() + 1, std::vector<int>(after.size() + 1));
    for (std::size_t i = before.size(); i-- > 0;) {
        for (std::size_t j = after.size(); j-- > 0;) {
            common[i][j] = before[i] == after[j] ? common[i + 1][j + 1] + 1
                                                 : std::max(common[i + 1][j], common[i][j + 1]);
        }
    }
    std::string difference;
    for (std::size_t i = 0, j = 0; i < before.size() || j < after.size();) {
        if (i < before.size() && j < after.size() && before[i] == after[j]) {
            ++i;
            ++j;
        } else if (j == after.size() || (i < before.size() && common[i + 1][j] >= common[i][j + 1])) {
            difference += "- " + before[i++] + '\n';
        } else {
            difference += "+ " + after[j++] + '\n';
        }
    }
    return difference;
}

/// One line in the place of a program's whole output, which a difference removes.
std::string Shortened(const std::string& difference, const std::vector<std::string>& usual)
{
    const auto isOutput = [](const std::string& line) {
        return line == "out" || line.starts_with("out ");
    };
    const auto isRemoved = [&](const std::string& line) {
        return line.starts_with("- ") && isOutput(line.substr(2));
    };
    const std::vector<std::string> lines = Lines(difference);
    const auto all = std::ranges::count_if(usual, isOutput);
    if (all == 0 || std::ranges::count_if(lines, isRemoved) != all) {
        return difference;
    }
    std::string shorter = "- all that it prints\n";
    for (const std::string& line : lines) {
        shorter += isRemoved(line) ? std::string() : line + '\n';
    }
    return shorter;
}

} // namespace

void Outcomes::Begin(const std::string& outcome, int allocations)
{
    At(outcome);
    allocationsOfUsual = allocations;
}

Outcomes::Outcome& Outcomes::At(const std::string& text)
{
    const auto known = std::ranges::find(outcomes, text, &Outcome::text);
    return known != outcomes.end() ? *known : outcomes.emplace_back(Outcome{text, {}});
}

void Outcomes::Add(const SweptCall& call, const Failure& failure, const std::string& outcome)
{
    auto& functions = At(outcome).functions;
    auto function = std::ranges::find(functions, call.function, [](const auto& each) {
        return each.first;
    });
    if (function == functions.end()) {
        function = functions.insert(functions.end(), {call.function, {}});
    }
    function->second[call.occurrence].emplace_back(failure.name);
}

std::string Outcomes::Text() const
{
    const std::vector<std::string> usual = Lines(outcomes.front().text);
    std::string text = std::string(kAllocationsMark) + std::to_string(allocationsOfUsual) +
                       "\nWhen nothing fails, and when these fail (below: what is then otherwise):\n";
    for (const Outcome& outcome : outcomes) {
        for (const auto& [function, occurrences] : outcome.functions) {
            for (const auto& [failures, ranges] : Ranges(occurrences)) {
                text += std::string(kFailureMark) + function + ' ' + ranges + ": " + failures + '\n';
            }
        }
        const std::vector<std::string> shown = Lines(
            &outcome == &outcomes.front() ? outcome.text
                                          : Shortened(Difference(usual, Lines(outcome.text)), usual));
        for (const std::string& line : shown) {
            text += std::string(kLineMark) + line + '\n';
        }
        text += '\n';
    }
    return text;
}

void CheckExpectedFile(const std::string& scene, const Outcomes& outcomes,
                       const std::vector<SweptCall>& calls)
{
    if (std::getenv("KESTRABOOT_REWRITE_EXPECTED") != nullptr) {
        std::ofstream(FileOf(scene), std::ios::binary) << outcomes.Text();
        return;
    }
    const std::string text = Contents(FileOf(scene));
    Expectations expected = Parse(text);
    const std::string actual = outcomes.Text();
    CheckAllocations(scene, Allocations(actual));
    for (const auto& [name, outcome] : Parse(actual)) {
        const auto known = expected.find(name);
        EXPECT_EQ(outcome, known != expected.end() ? known->second : "(nothing)")
            << scene << ": " << (name.empty() ? "no failure" : name);
    }
    expected.erase("");
    for (const SweptCall& call : calls) {
        for (const Failure* const failure : call.failures) {
            const std::string name = NameOf(call, *failure);
            EXPECT_EQ(expected.erase(name), 1U) << scene << "'s file does not list " << name;
        }
    }
    for (const auto& [name, outcome] : expected) {
        ADD_FAILURE() << scene << "'s file lists a call that is not made: " << name;
    }
}

void CheckAllocations(const std::string& scene, int actual)
{
    const int stated = Allocations(Contents(FileOf(scene)));
    constexpr bool kLibraryOfTheFiles = _GLIBCXX_RELEASE == 12;
    if (kLibraryOfTheFiles) {
        EXPECT_GE(actual, stated) << scene << ": the number of allocations";
    } else {
        EXPECT_GE(4 * actual, 3 * stated) << scene << ": the number of allocations";
    }
    if (!FromTheArchive()) {
        // With another libstdc++ the tools' libraries are of another release too, and allocate more.
        const bool ofTools = scene.starts_with("ctl_") || scene.starts_with("trace_");
        EXPECT_LE(actual, kLibraryOfTheFiles || !ofTools ? stated : stated * 5 / 4)
            << scene << ": the number of allocations";
    }
}

std::vector<std::string> ScenesWithAFile()
{
    std::vector<std::string> scenes;
    for (const auto& file : std::filesystem::directory_iterator(ExpectedFaults())) {
        scenes.push_back(file.path().stem().string());
    }
    return scenes;
}

bool SomeSceneSweeps(const std::string& function)
{
    for (const auto& file : std::filesystem::directory_iterator(ExpectedFaults())) {
        if (Contents(file.path()).find(std::string(kFailureMark) + function + ' ') !=
            std::string::npos) {
            return true;
        }
    }
    return false;
}

} // namespace kestraboot::tests
