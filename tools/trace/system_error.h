#pragma once

#include <string>

namespace kestraboot::tools
{

/// "kestratrace: cannot WHAT: The system cannot find the path specified. (error 3)" on standard error,
/// of the last error that Windows told this thread.
void TellSystemError(const std::string& what);

} // namespace kestraboot::tools
