#pragma once

#include "kestraboot/application_info.h"

#include <vector>

namespace kestraboot
{

/// Every application key below the machine-wide root, read into a record: keys nearer to the root
/// first, below one parent in the registry's order. Keys below an application key are not searched.
[[nodiscard]] std::vector<appInfo_tag> CollectApplicationKeys();

} // namespace kestraboot
