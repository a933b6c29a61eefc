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
    std::string text; ///< why it was skipped, or what was seen of its failure
};

/// Understands what a GoogleTest program writes on its standard output, as it comes. Not its XML file:
/// that comes at the very end, which a program that crashes does not see, and its path must fit the ANSI
/// code page.
class TestOutput
{
public:
    /// Takes a further piece. Returns whether a test began or ended in it.
    bool Add(std::string_view piece);

    [[nodiscard]] const std::vector<TestResult>& Finished() const noexcept { return finished; }

    /// The test that has begun and not ended, and what was written meanwhile.
    [[nodiscard]] const std::optional<TestResult>& Running() const noexcept { return running; }

    /// Whether the program said that it is through with all its tests.
    [[nodiscard]] bool IsThrough() const noexcept { return through; }

    /// What was written while no test ran, such as why the program could not begin.
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
