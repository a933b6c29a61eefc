// The table against the library's imports: whoever adds a call is told what to add here.
#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/expected_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace kestraboot::tests
{
namespace
{

/// Called in none of the scenes: for a trace line that is cut, and by the runtime for single characters.
constexpr std::string_view kInNoScene[] = {"_vscwprintf", "fputwc"};

TEST(FailureTable, KnowsEveryFunctionThatTheLibraryImportsAndASceneSweepsEachThatCanFail)
{
    const CallGate gate(::GetModuleHandleW(L"kestraboot.dll"), LetCallGoOn);
    EXPECT_GT(gate.Slots().size(), 80U);
    for (const CallGate::Slot& slot : gate.Slots()) {
        if (slot.failures == nullptr) {
            ADD_FAILURE() << slot.function
                          << " is new: add its failures to Table() in failure_table.cpp, or "
                          << "its name to kCannotFail there";
        } else if (!slot.failures->failures.empty() &&
                   std::ranges::find(kInNoScene, slot.function) == std::end(kInNoScene)) {
            EXPECT_TRUE(SomeSceneSweeps(slot.function)) << "no scene calls " << slot.function;
        }
    }
}

} // namespace
} // namespace kestraboot::tests
