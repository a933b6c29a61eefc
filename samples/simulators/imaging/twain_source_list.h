// The data sources that the simulated source manager lists: the file "twain_sources.txt".
#pragma once

#include "../common/configuration.h"
#include "trackers/still_image/twain.h"

#include <vector>

namespace kestraboot::simulators
{

[[nodiscard]] std::vector<Entry> ReadSourceEntries();

/// Begins the list, and reads it.
void BeginSourceList();

/// Fills in the next source: TWRC_SUCCESS, or TWRC_ENDOFLIST (7).
[[nodiscard]] twain::TW_UINT16 NextSource(twain::TW_IDENTITY& source);

} // namespace kestraboot::simulators
