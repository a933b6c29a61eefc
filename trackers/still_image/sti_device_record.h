#pragma once

#include "trackers/still_image/sti_device_list.h"

#include <windows.h>
#include <sti.h>

namespace kestraboot
{

/// Makes the record of a listed device: its name, and its TWAIN data source if it has one that the
/// source manager lists. Throws std::bad_alloc.
[[nodiscard]] UniqueStiDeviceRecord ReadStiDevice(const STI_DEVICE_INFORMATIONW& listed);

} // namespace kestraboot
