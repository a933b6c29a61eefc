// The possible failures of each function that the product imports, or gets from an object or a library.
#pragma once

#include "tests/endurance/faults/call_gate.h"

#include <windows.h>

#include <string_view>
#include <vector>

namespace kestraboot::tests
{

struct Failure {
    const char* name;
    std::uint64_t result;
    DWORD lastError = ERROR_SUCCESS; ///< left alone if it is success
    /// The effect of the function despite the failure: none, or all of it (a handle whose close is
    /// reported as failed is closed), or all of it with a result of its own (a mutex that exists
    /// already).
    enum class Work { None, Done, DoneWithItsResult } work = Work::None;
    void (*writes)(const GatedCall& call) = nullptr;
    bool (*applies)(const GatedCall& call) = nullptr; ///< null: to every call
};

struct FunctionFailures {
    const char* function;
    std::vector<Failure> failures; ///< empty: it cannot fail
    int balance = 0;               ///< 1 takes memory that a function with -1 gives back
};

/// Every function that can fail.
[[nodiscard]] const std::vector<FunctionFailures>& FailureTable();

/// Null for a function that the table does not know. A function of the UCRT fails like the function of
/// msvcrt that it replaces.
[[nodiscard]] const FunctionFailures* FailuresOf(std::string_view function);

/// Of a function that acts as another one when its second argument, a buffer, is null; else null.
[[nodiscard]] const FunctionFailures* FailuresWithoutBufferOf(std::string_view function);

} // namespace kestraboot::tests
