#include "foundation/file_formats.h"

#include "foundation/text.h"

#include <utility>

namespace kestraboot
{

void AppendFormats(std::vector<formatInfo_tag>& formats, std::wstring_view extensions,
                   const wchar_t* mediaType)
{
    for (std::wstring& extension : SplitAtBlanks(extensions)) {
        formats.push_back({std::move(extension), mediaType});
    }
}

} // namespace kestraboot
