#pragma once

#include "kestraboot/information_handler.h"

#include <vector>

namespace kestraboot
{

/// Appends the media file kinds that an arriving volume is searched for: the image and video kinds of
/// the default applications or, when there is none, of all applications and the legacy organiser.
/// `handler` must have been loaded. Duplicates are kept. Throws std::bad_alloc.
void GetSupportedFormats(CKestraBootInformationHandler& handler, std::vector<formatInfo_tag>& out);

} // namespace kestraboot
