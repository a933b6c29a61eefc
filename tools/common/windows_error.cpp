#include "tools/common/windows_error.h"

#include "tools/common/utf8.h"

#include <windows.h>

namespace kestraboot::tools
{

std::string WindowsErrorText(unsigned long error)
{
    const std::string number = "error " + std::to_string(error);
    wchar_t text[512] = {};
    const DWORD length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS |
                                              FORMAT_MESSAGE_MAX_WIDTH_MASK,
                                          nullptr, error, 0, text, 512, nullptr);
    std::string said = ToUtf8({text, length});
    said.erase(said.find_last_not_of(" \r\n") + 1); // npos + 1 is 0
    return said.empty() ? number : said + " (" + number + ")";
}

} // namespace kestraboot::tools
