#pragma once

#include "kestraboot/information_handler.h"

namespace kestraboot
{

/// How many folder levels of a volume are searched for media, the root included: the per-user DWORD
/// "SniffDepth" in the running application's own key; 4 where it is missing or negative. 0 switches
/// reports of volumes off. Maintains the order of `handler`, which can end the process.
[[nodiscard]] int ReadSniffDepth(CKestraBootInformationHandler& handler);

} // namespace kestraboot
