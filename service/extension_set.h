#pragma once

#include "kestraboot/application_info.h"

#include <string>
#include <string_view>
#include <vector>

namespace kestraboot
{

/// The supported file extensions of one media walk, looked up without allocating.
class ExtensionSet
{
public:
    explicit ExtensionSet(const std::vector<formatInfo_tag>& formats);

    /// Ignores case, as the C runtime's _wcsicmp does. `extension` has no dot. "pdf" is in no set,
    /// whatever the formats list.
    [[nodiscard]] bool Contains(const wchar_t* extension) const noexcept;

private:
    std::vector<std::wstring> sorted; ///< in _wcsicmp's order
};

/// The text after the last dot of a file name; null if it has no dot. A zero terminates both.
[[nodiscard]] const wchar_t* FileExtension(std::wstring_view fileName) noexcept;

} // namespace kestraboot
