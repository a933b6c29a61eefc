#pragma once

#include <functional>
#include <map>
#include <string>

namespace kestraboot::tests
{

using CallCounts = std::map<std::string, int>;

/// The number of calls of each function of Windows that `work` makes on this thread. Functions of the C
/// runtime do not count: their names begin with a small letter or an underscore.
[[nodiscard]] CallCounts CallsOf(const std::function<void()>& work);

} // namespace kestraboot::tests
