#pragma once

#include "kestraboot/application_info.h"

#include <string_view>
#include <vector>

namespace kestraboot
{

/// Appends one format of kind `mediaType` ("Image", "Audio", "Video") for each extension of a list that
/// is separated by single blanks. Empty pieces are left out; nothing is trimmed, lower-cased or left out
/// as a duplicate.
void AppendFormats(std::vector<formatInfo_tag>& formats, std::wstring_view extensions,
                   const wchar_t* mediaType);

} // namespace kestraboot
