#pragma once

#include <functional>

namespace kestraboot::tests
{

/// The number of allocations that `work` makes with operator new on this thread, in this executable and
/// in the functions of the C++ runtime that it uses.
[[nodiscard]] long AllocationsOf(const std::function<void()>& work);

} // namespace kestraboot::tests
