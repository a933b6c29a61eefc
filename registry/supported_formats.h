#pragma once

#include "kestraboot/information_handler.h"

#include <vector>

namespace kestraboot
{

/// Appends the file kinds for which an arriving volume is scanned: the image and video kinds of the
/// default applications or, if there is no default, of all applications and the legacy organiser.
/// `handler` must be loaded. Duplicates stay. Throws std::bad_alloc.
void GetSupportedFormats(CKestraBootInformationHandler& handler, std::vector<formatInfo_tag>& out);

} // namespace kestraboot
