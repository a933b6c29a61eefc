#include "tools/ctl/check/words.h"

#include <cwchar>

namespace kestraboot::tools
{

std::wstring AndList(const std::vector<std::wstring>& words)
{
    std::wstring text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const wchar_t* const between = i == 0 ? L"" : i + 1 == words.size() ? L" and " : L", ";
        text += between + words[i];
    }
    return text;
}

std::wstring Wide(const std::string& ascii)
{
    std::wstring text;
    for (const char character : ascii) {
        const auto code = static_cast<unsigned char>(character);
        text += code >= 0x20 && code < 0x7F ? static_cast<wchar_t>(code) : L'?';
    }
    return text;
}

bool SameIgnoringCase(const std::wstring& one, const std::wstring& other)
{
    return ::_wcsicmp(one.c_str(), other.c_str()) == 0;
}

} // namespace kestraboot::tools
