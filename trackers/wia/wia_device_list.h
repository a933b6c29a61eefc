#pragma once

#include "trackers/wia/imaging_type.h"

#include <windows.h>
#include <wia.h>

namespace kestraboot
{

/// Searches the local devices that the WIA service lists for exactly this identifier, and returns
/// the device's type. Other if no device has it or the service fails.
[[nodiscard]] ImagingType FindWiaDeviceType(IWiaDevMgr& deviceManager, const wchar_t* deviceId) noexcept;

} // namespace kestraboot
