#pragma once

#include "service/extension_set.h"

namespace kestraboot
{

/// Searches a volume breadth-first for a file of a supported kind: all folders of one level before
/// any of the next. The root has level 1; folders deeper than `depth` (at least 1) are not listed.
/// Ends at the first such file (true) and at the first folder that cannot be listed (false). Traces
/// each entry. Allocates for folders alone. Suppresses critical-error boxes meanwhile.
[[nodiscard]] bool FindSupportedFile(const wchar_t* rootPath, unsigned depth,
                                     const ExtensionSet& extensions);

} // namespace kestraboot
