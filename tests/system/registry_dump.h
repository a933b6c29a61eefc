#pragma once

#include <string>
#include <vector>

namespace kestraboot::tests
{

/// All of HKEY_CURRENT_USER and of HKEY_LOCAL_MACHINE\SOFTWARE except large keys of Windows' own
/// (classes, time zones and similar ones): one line for each key and value, with the time of the last
/// writing for the keys that the library uses. Throws std::runtime_error if a root cannot be read,
/// because an empty dump would equal another empty dump.
[[nodiscard]] std::vector<std::string> RegistryDump();

} // namespace kestraboot::tests
