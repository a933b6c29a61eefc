#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// How a process ended that really ended.
struct ChildEnd {
    unsigned long exitCode;
    std::vector<std::wstring> traceLines; ///< that the operation wrote
};

/// The exit code of a child whose operation returned.
inline constexpr unsigned long kOperationReturned = 77;

/// Runs `operation` in a process of its own, with a registry sandbox of its own, for what may end a
/// process.
///
/// The process is this very executable, running the test that calls, which begins anew in it and ends at
/// this call: what stands before the call happens there too, and what the operation refers to is the
/// child's.
[[nodiscard]] ChildEnd RunInChild(const std::function<void()>& operation);

/// Whether this process is such a child.
[[nodiscard]] bool IsChild();

} // namespace kestraboot::tests
