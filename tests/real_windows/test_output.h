#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestraboot::real_windows
{

enum class Outcome { Passed, Failed, Skipped };

struct TestResult {
    std::string name; ///< "Suite.Test"
    Outcome outcome = Outcome::Failed;
    long long milliseconds = 0;
    std::string text; ///< the reason for the skip, or the output of its failure
};

/// Parses the standard output of a GoogleTest program as it arrives. It does not use the XML file, which
/// is written at the very end, so that a program that crashes does not write it, and whose path must fit
/// the ANSI code page.
class TestOutput
{
public:
    /// Takes a further piece. Returns whether a test began or ended in it.
    bool Add(std::string_view piece);

    [[nodiscard]] const std::vector<TestResult>& Finished() const noexcept { return finished; }

    /// The test that has begun and not ended, and its output so far.
    [[nodiscard]] const std::optional<TestResult>& Running() const noexcept { return running; }

    /// Whether the program reported the end of all its tests.
    [[nodiscard]] bool IsThrough() const noexcept { return through; }

    /// The output while no test ran, such as the reason why the program could not begin.
    [[nodiscard]] const std::string& OutsideOfTests() const noexcept { return outside; }

private:
    bool TakeLine(const std::string& line);

    std::string unread;
    std::string outside;
    std::vector<TestResult> finished;
    std::optional<TestResult> running;
    bool through = false;
};

/// The names in the answer to --gtest_list_tests.
[[nodiscard]] std::vector<std::string> ListedTests(const std::string& output);

} // namespace kestraboot::real_windows
