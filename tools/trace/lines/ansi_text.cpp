#include "tools/trace/lines/ansi_text.h"

#include "tools/common/utf8.h"

#include <windows.h>
#include <algorithm>

namespace kestraboot::tools
{

std::string FromAnsi(std::string_view text)
{
    std::wstring wide(text.size(), L'\0'); // never more characters than bytes
    const int length = ::MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()),
                                             wide.data(), static_cast<int>(wide.size()));
    if (length == 0) { // at least what every code page has in common
        std::ranges::transform(text, wide.begin(), [](char character) {
            const auto byte = static_cast<unsigned char>(character);
            return byte < 0x80 ? static_cast<wchar_t>(byte) : L'\xFFFD';
        });
        return ToUtf8(wide);
    }
    return ToUtf8(std::wstring_view(wide).substr(0, static_cast<std::size_t>(length)));
}

} // namespace kestraboot::tools
