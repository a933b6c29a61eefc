// Reports a still-image device that arrived.
#pragma once

#include "trackers/still_image/sti_device_list.h"

namespace kestraboot
{

/// Reports the device as a TWAIN source, if it has one, and then, on Windows XP alone, as a WIA
/// device, if WIA lists it. Throws std::bad_alloc.
void ReportStiDevice(const StiDeviceRecord& device);

} // namespace kestraboot
