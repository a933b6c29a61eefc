#include "tools/trace/system_error.h"

#include "tools/common/windows_error.h"

#include <windows.h>
#include <cstdio>

namespace kestraboot::tools
{

void TellSystemError(const std::string& what)
{
    const DWORD error = ::GetLastError();
    std::fprintf(stderr, "kestratrace: cannot %s: %s\n", what.c_str(), WindowsErrorText(error).c_str());
}

} // namespace kestraboot::tools
