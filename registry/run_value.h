// The machine's one auto-run entry: which proxy starts at log-on, for all compatible applications.
#pragma once

#include <string>

namespace kestraboot
{

/// Points the entry at `proxyPath`, in double quotes. False when the file does not exist (nothing is
/// written then) or the key cannot be opened for writing.
bool SetRunValue(const std::wstring& proxyPath);

/// Removes the entry; one that is missing is no error. False when the key cannot be opened.
bool DeleteRunValue();

} // namespace kestraboot
