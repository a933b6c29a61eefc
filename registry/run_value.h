// The machine's one auto-run entry: the proxy that starts at log-on, for all compatible
// applications.
#pragma once

#include <string>

namespace kestraboot
{

/// Sets the entry to `proxyPath`, in double quotes. False if the file does not exist (nothing is
/// written then) or the key cannot be opened for writing.
bool SetRunValue(const std::wstring& proxyPath);

/// Removes the entry; a missing entry is no error. False if the key cannot be opened.
bool DeleteRunValue();

} // namespace kestraboot
