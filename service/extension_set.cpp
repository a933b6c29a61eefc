#include "service/extension_set.h"

#include "foundation/text.h"

#include <algorithm>

namespace kestraboot
{

ExtensionSet::ExtensionSet(const std::vector<formatInfo_tag>& formats)
{
    sorted.reserve(formats.size());
    for (const formatInfo_tag& format : formats) {
        sorted.push_back(format.Extension);
    }
    std::ranges::sort(sorted, [](const std::wstring& left, const std::wstring& right) {
        return CompareIgnoringCase(left.c_str(), right.c_str()) < 0;
    });
}

bool ExtensionSet::Contains(const wchar_t* extension) const noexcept
{
    if (CompareIgnoringCase(extension, L"pdf") == 0) {
        return false; // documents are no media, even where an application handles them as pictures
    }
    const auto notLess = std::ranges::partition_point(sorted, [&](const std::wstring& listed) {
        return CompareIgnoringCase(listed.c_str(), extension) < 0;
    });
    return notLess != sorted.end() && CompareIgnoringCase(notLess->c_str(), extension) == 0;
}

const wchar_t* FileExtension(std::wstring_view fileName) noexcept
{
    const std::size_t dot = fileName.rfind(L'.');
    return dot != std::wstring_view::npos ? fileName.data() + dot + 1 : nullptr;
}

} // namespace kestraboot
