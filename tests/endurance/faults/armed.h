// The planned failures of one run, and their time.
#pragma once

#include "tests/endurance/faults/call_gate.h"
#include "tests/endurance/faults/failure_table.h"
#include "tests/support/allocation_failure.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// A call that the operation made and that can fail.
struct SweptCall {
    const char* function;
    int occurrence;                       ///< of this function in the run, from 1
    std::vector<const Failure*> failures; ///< those that apply to it
};

/// One run's plan; an empty one fails nothing.
struct Plan {
    int call = -1; ///< the index among the calls that can fail
    const char* function = nullptr;
    const Failure* failure = nullptr;
    std::optional<int> allocations = {}; ///< the number of allocations that succeed
    Shortage shortage = Shortage::Once;

    /// The distance of the second failing call, counted from the first one; 0: only one call fails.
    int secondAfter = 0;
    unsigned secondChoice = 0; ///< which of its failures, modulo their number
};

/// Sets the plan of the next Armed scopes of a run; forgets the previous run's.
void BeginRun(const Plan& plan);

/// The calls of the run that can fail, in order. Valid after a run without a failure.
[[nodiscard]] std::vector<SweptCall> SweptCalls();

/// Whether the run reached the planned failure.
[[nodiscard]] bool PlanHappened();

/// The second failing call, with the failure, such as "RegCloseKey: bad handle"; empty if the run did
/// not get that far.
[[nodiscard]] std::string SecondFailure();

/// Functions that the table does not know, and whether the planned call was another function's.
[[nodiscard]] std::vector<const char*> UnknownFunctions();
[[nodiscard]] bool PlanMetAnotherCall();

/// The system memory that the module took and did not give back since the process began.
[[nodiscard]] long MemoryBalance();

/// The gate's decision.
bool LetCallGoOn(GatedCall& call) noexcept;

/// For an operation without an import slot, a method or a function from GetProcAddress: its stand-in
/// asks at its beginning, and returns the failing result if there is one. `arguments` are those
/// through which a failure may write.
using CallArguments = std::array<std::uint64_t, 4>;
[[nodiscard]] std::optional<std::uint64_t> FailureNow(const char* operation,
                                                      CallArguments arguments = {}) noexcept;

/// While it lives, the calls of this thread are the operation's. At its end it writes the thread's
/// remaining windows and COM apartments into the journal. Not nested.
class Armed
{
public:
    Armed();
    Armed(const Armed&) = delete;
    Armed& operator=(const Armed&) = delete;
    ~Armed();

private:
    int windowsBefore;
    bool comBefore;
    std::optional<AllocationFailure> shortOfMemory;
};

} // namespace kestraboot::tests
