// The table against the library's imports: the test names the entry that a new call needs here.
#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/expected_file.h"
#include "tests/endurance/faults/failure_table.h"
#include "tests/support/source_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

namespace kestraboot::tests
{
namespace
{

/// No scene calls them while nothing fails: the runtime's, for single characters and padding in a
/// console text; the boot program's, for a standard handle of a console; and the tools', for the reason
/// of a failure, and for a second turn in the debug output.
constexpr std::string_view kInNoScene[] = {"fputwc", "SetStdHandle", "FormatMessageW", "ResetEvent"};

TEST(FailureTable, KnowsEveryFunctionThatTheLibraryImports)
{
    const CallGate gate(::GetModuleHandleW(L"kestraboot.dll"), LetCallGoOn);
    EXPECT_GT(gate.Slots().size(), 80U);
    for (const CallGate::Slot& slot : gate.Slots()) {
        EXPECT_NE(slot.failures, nullptr)
            << slot.function << " is new: add its failures to FailureTable() in failure_table.cpp, or "
            << "its name to kCannotFail there";
    }
}

TEST(FailureTable, ListsNoFunctionThatNoSceneSweeps)
{
    for (const FunctionFailures& entry : FailureTable()) {
        if (entry.failures.empty()) {
            continue; // it only gives memory back
        }
        EXPECT_NE(SomeSceneSweeps(entry.function),
                  std::ranges::find(kInNoScene, entry.function) != std::end(kInNoScene))
            << "no scene calls " << entry.function;
    }
}

TEST(ExpectedOutcomes, BelongToExistingScenes)
{
    std::string tests;
    for (const auto& file : std::filesystem::directory_iterator(SourceFile("tests/endurance/faults"))) {
        if (file.path().extension() == ".cpp") {
            std::ifstream in(file.path(), std::ios::binary);
            tests.append(std::istreambuf_iterator<char>(in), {});
        }
    }
    for (const std::string& scene : ScenesWithAFile()) {
        EXPECT_NE(tests.find('"' + scene + '"'), std::string::npos) << "no test sweeps " << scene;
    }
    EXPECT_GT(ScenesWithAFile().size(), 20U);
}

} // namespace
} // namespace kestraboot::tests
