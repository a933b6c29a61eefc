// What is told of a still-image device that arrived.
#pragma once

#include "trackers/still_image/sti_device_list.h"

namespace kestraboot
{

/// Reports the device as a TWAIN source, where it has one, and then, on Windows XP alone, as a WIA
/// device, where WIA knows it. Throws std::bad_alloc.
void ReportStiDevice(const StiDeviceRecord& device);

} // namespace kestraboot
