// The TWAIN data source of a still-image device: the name that the device's driver registers, and
// whether the source manager lists it.
#pragma once

#include "foundation/text.h"

namespace kestraboot
{

using TextField = wchar_t[kFieldCapacity];

/// Reads the data source's name from the device's class key. `internalName` is the device's name in
/// still imaging, which is also the path of that key. False, with `dataSource` unchanged, if there
/// is none or an argument is null. Throws std::bad_alloc.
[[nodiscard]] bool FindTwainSource(const wchar_t* internalName, TextField* dataSource);

/// Whether the source manager lists a data source of that name, in any case. The sources by which
/// WIA devices appear in TWAIN ("WIA-...") do not count.
[[nodiscard]] bool TwainSourceListed(const wchar_t* dataSource) noexcept;

} // namespace kestraboot
