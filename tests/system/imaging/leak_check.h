#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace kestraboot::tests
{

/// Runs `operation` and compares the resources of `process` before and after. Windows and COM create
/// threads, heaps and connections of their own at any time, so only growth in each repetition is a leak:
/// a window or thread, more than 4 handles, or more than 256 KB. So `operation` must repeat its work
/// often enough that a leak exceeds this: 100 times for 2.6 KB, 2,000 times for 130 bytes.
[[nodiscard]] testing::AssertionResult LeavesNothingBehind(HANDLE process, const std::string& what,
                                                           const std::function<void()>& operation);

} // namespace kestraboot::tests
