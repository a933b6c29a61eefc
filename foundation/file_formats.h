#pragma once

#include "kestraboot/application_info.h"

#include <string_view>
#include <vector>

namespace kestraboot
{

/// Appends one format of kind `mediaType` ("Image", "Audio", "Video") for each extension of a list
/// that is separated by single blanks. Skips empty pieces; does not trim, change the case or remove
/// duplicates.
void AppendFormats(std::vector<formatInfo_tag>& formats, std::wstring_view extensions,
                   const wchar_t* mediaType);

} // namespace kestraboot
