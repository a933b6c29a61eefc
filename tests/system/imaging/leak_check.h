#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace kestraboot::tests
{

/// Runs `operation` and compares what `process` holds before and after. Windows and COM make threads,
/// heaps and connections of their own once, whenever they like; only what grows each time is a leak.
[[nodiscard]] testing::AssertionResult LeavesNothingBehind(HANDLE process, const std::string& what,
                                                           const std::function<void()>& operation);

} // namespace kestraboot::tests
