#pragma once

#include <string>
#include <vector>

namespace kestraboot::tests
{

/// Everything in HKEY_CURRENT_USER and in HKEY_LOCAL_MACHINE\SOFTWARE but large keys of Windows' own
/// (classes, time zones and the like): one line for each key and value, with the time of the last
/// writing for the keys that the library works with. Throws std::runtime_error where a root cannot be
/// read: an empty dump equals itself.
[[nodiscard]] std::vector<std::string> RegistryDump();

} // namespace kestraboot::tests
