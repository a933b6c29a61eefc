#pragma once

#include <string>
#include <utility>
#include <vector>

namespace kestraboot::real_windows
{

/// Wine's version and the system that it runs on; empty on a real Windows.
[[nodiscard]] std::string WineVersion();

/// The facts about the machine that explain the results: Windows' version and edition first. Nothing
/// identifies the user.
[[nodiscard]] std::vector<std::pair<std::string, std::string>> ThisMachine();

} // namespace kestraboot::real_windows
