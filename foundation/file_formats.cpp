#include "foundation/file_formats.h"

#include <algorithm>

namespace kestraboot
{

void AppendFormats(std::vector<formatInfo_tag>& formats, std::wstring_view extensions,
                   const wchar_t* mediaType)
{
    constexpr std::size_t kUsualFormats = 16; // of one application; so many need one allocation

    while (!extensions.empty()) {
        const std::wstring_view extension = extensions.substr(0, extensions.find(L' '));
        if (!extension.empty()) {
            if (formats.empty()) {
                formats.reserve(kUsualFormats);
            }
            formats.push_back({std::wstring(extension), mediaType});
        }
        extensions.remove_prefix(std::min(extension.size() + 1, extensions.size()));
    }
}

} // namespace kestraboot
