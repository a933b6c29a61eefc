#pragma once

#include "tests/real_windows/program_list.h"
#include "tests/real_windows/test_output.h"

#include <filesystem>
#include <functional>
#include <vector>

namespace kestraboot::real_windows
{

struct Places {
    std::filesystem::path programs;
    std::filesystem::path scratch; ///< what tests write
    int longestTest;               ///< seconds
};

/// How far a program is: how many of its tests there are, and what has come out so far.
using Progress = std::function<void(std::size_t tests, const std::vector<TestResult>& results)>;

/// Runs the tests of a program and answers a result for each, in the program's order. A test that
/// crashes or hangs, or in which the program ends, has failed; the program is started again for those
/// behind it. What is wrong with the program itself is the failure of a test "(the program)".
[[nodiscard]] std::vector<TestResult> RunTestProgram(const Program& program, const Places& places,
                                                     const Progress& progress);

} // namespace kestraboot::real_windows
