// The table against the library's imports: whoever adds a call is told what to add here.
#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/expected_file.h"
#include "tests/endurance/faults/failure_table.h"

#include <gtest/gtest.h>

#include <string_view>

namespace kestraboot::tests
{
namespace
{

/// Called in none of the scenes: the runtime's, for single characters and padding in a console text.
constexpr std::string_view kInNoScene = "fputwc";

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

TEST(FailureTable, HasNothingThatNoSceneSweeps)
{
    for (const FunctionFailures& entry : FailureTable()) {
        EXPECT_NE(SomeSceneSweeps(entry.function), entry.function == kInNoScene)
            << "no scene calls " << entry.function;
    }
}

} // namespace
} // namespace kestraboot::tests
