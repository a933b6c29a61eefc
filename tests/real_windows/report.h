#pragma once

#include "tests/real_windows/test_output.h"

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

namespace kestraboot::real_windows
{

struct ProgramResults {
    std::string program;
    std::vector<TestResult> tests;
};

struct Report {
    std::vector<std::pair<std::string, std::string>> facts; ///< of the machine and the run
    std::vector<ProgramResults> programs;
    std::vector<ProgramResults> leftOut; ///< not in the archive, all skipped

    [[nodiscard]] std::size_t Count(Outcome outcome) const;
    [[nodiscard]] std::string Summary() const; ///< one line
};

/// For people. Each throws std::runtime_error if the file cannot be written.
void WriteText(const Report& report, const std::filesystem::path& file);

/// The same as JUnit's XML, for machines.
void WriteJUnit(const Report& report, const std::filesystem::path& file);

} // namespace kestraboot::real_windows
