// The contents of the archive of tests, and the tests that are not run: programs.txt explains its words.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace kestraboot::real_windows
{

struct SkippedTests {
    std::string pattern; ///< of full test names, with * for any characters
    std::string reason;
};

struct Program {
    std::string path; ///< below the folder of programs, without ".exe"
    std::vector<SkippedTests> skipped;
};

struct TestLeftOut {
    std::string program;
    std::string name;
    std::string reason;
};

struct ProgramList {
    std::vector<Program> programs;
    std::vector<TestLeftOut> leftOut; ///< of the programs that are not in the archive
};

/// Reads both files of that folder. Throws std::runtime_error with the line that it does not understand.
[[nodiscard]] ProgramList ReadProgramList(const std::filesystem::path& folder, bool underWine);

[[nodiscard]] bool Matches(const std::string& pattern, const std::string& name);

} // namespace kestraboot::real_windows
