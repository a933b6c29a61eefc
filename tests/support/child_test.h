#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// How a process ended that really ended.
struct ChildEnd {
    unsigned long exitCode;
    std::vector<std::wstring> traceLines; ///< that its CallInChild wrote
};

/// The exit code of a child whose operation returned.
inline constexpr unsigned long kOperationReturned = 77;

/// Runs one test of this very executable in a process of its own. The test, named "Suite.DISABLED_Name"
/// so that it runs in no other way, does nothing but CallInChild.
[[nodiscard]] ChildEnd RunChildTest(const std::string& test);

/// Whether this process is such a child.
[[nodiscard]] bool IsChildTest();

/// Runs `operation`, with its trace lines passed to the parent and a registry sandbox that the parent
/// removes, then ends the process at once with kOperationReturned.
void CallInChild(const std::function<void()>& operation);

} // namespace kestraboot::tests
