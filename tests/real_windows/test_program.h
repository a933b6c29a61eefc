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
    std::filesystem::path scratch; ///< the tests' scratch files
    int longestTest;               ///< seconds
};

/// The progress of a program: the number of its tests, and the results so far.
using Progress = std::function<void(std::size_t tests, const std::vector<TestResult>& results)>;

/// Runs the tests of a program and returns a result for each, in the program's order. If a test crashes
/// or hangs, or if the program exits in it, the test has failed; the program is started again for the
/// tests behind it. A fault of the program itself is the failure of a test "(the program)".
[[nodiscard]] std::vector<TestResult> RunTestProgram(const Program& program, const Places& places,
                                                     const Progress& progress);

} // namespace kestraboot::real_windows
