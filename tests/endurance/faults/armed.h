// What is to fail in one run, and when.
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

/// One run's plan; none of it, and nothing fails.
struct Plan {
    int call = -1; ///< which of the calls that can fail
    const char* function = nullptr;
    const Failure* failure = nullptr;
    std::optional<int> allocations = {}; ///< so many work
    Shortage shortage = Shortage::Once;

    /// So many calls after the first that fails another one does, whichever it is by then; 0: none does.
    int secondAfter = 0;
    unsigned secondChoice = 0; ///< which of its failures, modulo their number
};

/// Sets what the next Armed scopes of a run do; forgets what the run before did.
void BeginRun(const Plan& plan);

/// The calls of the run that can fail, in order. To be had after a run without a failure.
[[nodiscard]] std::vector<SweptCall> SweptCalls();

/// Whether the run got as far as what was to fail.
[[nodiscard]] bool PlanHappened();

/// The call that failed as the second one, with the failure, such as "RegCloseKey: bad handle"; empty
/// where the run did not get that far.
[[nodiscard]] std::string SecondFailure();

/// Functions that the table does not know, and whether the call that was to fail was another function's.
[[nodiscard]] std::vector<const char*> UnknownFunctions();
[[nodiscard]] bool PlanMetAnotherCall();

/// What the module took from the system's memory and did not give back, since the process began.
[[nodiscard]] long MemoryBalance();

/// The gate's decision.
bool LetCallGoOn(GatedCall& call) noexcept;

/// For an operation that has no import slot, a method or a function from GetProcAddress: its stand-in
/// asks at its beginning, and answers the failing result where there is one. `arguments` are those
/// through which a failure may write.
using CallArguments = std::array<std::uint64_t, 4>;
[[nodiscard]] std::optional<std::uint64_t> FailureNow(const char* operation,
                                                      CallArguments arguments = {}) noexcept;

/// While it lives the calls of this thread are the operation's. At its end it writes into the journal
/// what the operation left of the thread's windows and COM apartments. Not nested.
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
