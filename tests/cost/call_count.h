#pragma once

#include <functional>
#include <map>
#include <string>

namespace kestraboot::tests
{

using CallCounts = std::map<std::string, int>;

/// How often `work` calls each function of Windows on this thread. The C runtime's functions, whose
/// names begin with a small letter or an underscore, are not counted.
[[nodiscard]] CallCounts CallsOf(const std::function<void()>& work);

} // namespace kestraboot::tests
