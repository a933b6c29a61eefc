#pragma once

#include <string>

namespace kestraboot::tools
{

/// Writes "kestratrace: cannot WHAT: The system cannot find the path specified. (error 3)" to
/// standard error, for this thread's last error.
void TellSystemError(const std::string& what);

} // namespace kestraboot::tools
