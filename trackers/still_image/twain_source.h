// The TWAIN data source of a still-image device: what the device's driver names, and whether the source
// manager knows it.
#pragma once

#include "foundation/text.h"

namespace kestraboot
{

using TextField = wchar_t[kFieldCapacity];

/// Reads the data source's name from the device's class key. `internalName` is the device's name in
/// still imaging, which is also the path of that key. False, and `dataSource` as it was, when there is
/// none or an argument is null. Throws std::bad_alloc.
[[nodiscard]] bool FindTwainSource(const wchar_t* internalName, TextField* dataSource);

/// Whether the source manager lists a data source of that name, in whatever letter case. The sources
/// through which WIA devices appear in TWAIN ("WIA-...") do not count.
[[nodiscard]] bool TwainSourceListed(const wchar_t* dataSource) noexcept;

} // namespace kestraboot
