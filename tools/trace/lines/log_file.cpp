#include "tools/trace/lines/log_file.h"

#include "tools/common/standard_output.h"

#include <cstdio>

namespace kestraboot::tools
{

bool LogFile::Open(const std::wstring& path)
{
    const HANDLE opened =
        ::CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                      OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE) {
        return false;
    }
    file = Handle(opened);
    return true;
}

void LogFile::Write(std::string_view line)
{
    if (!file) {
        return;
    }
    const bool written = WriteBytes(file.Get(), line);
    if (!written && !failing) {
        std::fprintf(stderr, "kestratrace: cannot write to the file (error %lu); going on\n",
                     ::GetLastError());
    }
    failing = !written;
    failedEver = failedEver || !written;
}

} // namespace kestraboot::tools
