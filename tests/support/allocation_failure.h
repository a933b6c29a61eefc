#pragma once

#include "tests/support/import_patch.h"

#include <functional>

namespace kestraboot::tests
{

/// How long memory stays short.
enum class Shortage { FromThenOn, Once };

/// Makes memory run out on this thread: during the object's lifetime the C++ runtime's operator new
/// fails. This executable and the strings and vectors inside the runtime share it.
class AllocationFailure
{
public:
    /// The first `successes` allocations succeed; then one fails, or all of them.
    explicit AllocationFailure(int successes, Shortage shortage = Shortage::FromThenOn);
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;
    ~AllocationFailure();

    /// Whether an allocation has failed.
    [[nodiscard]] static bool Happened() noexcept;

    /// The number of allocations requested so far, including those that failed.
    [[nodiscard]] static int AskedFor() noexcept;
};

/// The number of blocks of the C++ runtime's memory in use, counted from some time on; use differences.
[[nodiscard]] long LiveAllocations();

/// Runs `operation` repeatedly, each time with one more successful allocation, until a run needs no
/// more. After each run in which memory ran out, with memory restored, checks that it left no handle
/// open and passes to `afterFailure` whether it threw std::bad_alloc. Returns the number of these runs.
/// `operation` runs a first time with unlimited memory.
int ForEveryAllocation(const std::function<void()>& operation,
                       const std::function<void(bool threw)>& afterFailure,
                       Shortage shortage = Shortage::FromThenOn);

} // namespace kestraboot::tests
