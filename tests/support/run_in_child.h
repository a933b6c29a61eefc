#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// The end of a process that really ended.
struct ChildEnd {
    unsigned long exitCode;
    std::vector<std::wstring> traceLines; ///< that the operation wrote
};

/// The exit code of a child whose operation returned.
inline constexpr unsigned long kOperationReturned = 77;

/// Runs `operation` in a process of its own, with a registry sandbox of its own, because it may end the
/// process.
///
/// The process is this executable again. It runs the calling test from the start, and ends at this call.
/// So the code before the call runs there too, and `operation` refers to objects of the child.
[[nodiscard]] ChildEnd RunInChild(const std::function<void()>& operation);

/// Whether this process is such a child.
[[nodiscard]] bool IsChild();

} // namespace kestraboot::tests
