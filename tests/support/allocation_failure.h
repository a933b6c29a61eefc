#pragma once

#include "tests/support/import_patch.h"

#include <functional>

namespace kestraboot::tests
{

/// How long memory is short.
enum class Shortage { FromThenOn, Once };

/// Lets memory run out on this thread: the C++ runtime's operator new, which this executable and the
/// strings and vectors inside the runtime share, fails while this lives.
class AllocationFailure
{
public:
    /// `successes` allocations still work, then one fails, or every one.
    explicit AllocationFailure(int successes, Shortage shortage = Shortage::FromThenOn);
    AllocationFailure(const AllocationFailure&) = delete;
    AllocationFailure& operator=(const AllocationFailure&) = delete;
    ~AllocationFailure();

    /// Whether an allocation failed so far.
    [[nodiscard]] static bool Happened() noexcept;

    /// How many allocations were asked for so far, those that failed among them.
    [[nodiscard]] static int AskedFor() noexcept;
};

/// How many blocks of the C++ runtime's memory are in use, counted from some time on: for differences.
[[nodiscard]] long LiveAllocations();

/// Runs `operation` again and again, each time with one allocation more that works, until one run needs
/// no more. After each run in which memory ran out, with memory back, checks that it left no handle open
/// and tells `afterFailure` whether std::bad_alloc came out. Answers the number of such runs.
/// `operation` runs a first time with all the memory it wants.
int ForEveryAllocation(const std::function<void()>& operation,
                       const std::function<void(bool threw)>& afterFailure,
                       Shortage shortage = Shortage::FromThenOn);

} // namespace kestraboot::tests
