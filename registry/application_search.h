#pragma once

#include "kestraboot/application_info.h"

#include <vector>

namespace kestraboot
{

/// Every application key below the machine-wide root, read into a record: keys nearer to the root
/// first, within one parent in the registry's order. Nothing below an application key is searched.
[[nodiscard]] std::vector<appInfo_tag> CollectApplicationKeys();

} // namespace kestraboot
