#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace kestraboot::tests
{

/// Runs `operation` and compares what `process` holds before and after. Windows and COM make threads,
/// heaps and connections of their own once, whenever they like; only what grows each time is a leak: a
/// window or thread, more than 4 handles, or more than 256 KB. So `operation` must do its work often
/// enough that a leak of it shows: 100 times for 2.6 KB, 2,000 times for 130 bytes.
[[nodiscard]] testing::AssertionResult LeavesNothingBehind(HANDLE process, const std::string& what,
                                                           const std::function<void()>& operation);

} // namespace kestraboot::tests
