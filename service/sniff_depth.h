#pragma once

#include "kestraboot/information_handler.h"

namespace kestraboot
{

/// The number of folder levels of a volume that are scanned for media, the root included: the
/// per-user DWORD "SniffDepth" in the running application's own key; 4 if it is missing or
/// negative. 0 disables reports of volumes. Maintains the order of `handler`, which can end the
/// process.
[[nodiscard]] int ReadSniffDepth(CKestraBootInformationHandler& handler);

} // namespace kestraboot
