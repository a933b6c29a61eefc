#pragma once

#include "trackers/wia/imaging_type.h"

#include <windows.h>
#include <wia.h>

namespace kestraboot
{

/// Walks the local devices that the WIA service lists, until one has exactly this identifier, and
/// answers what it is. Other when none has or the service fails.
[[nodiscard]] ImagingType FindWiaDeviceType(IWiaDevMgr& deviceManager, const wchar_t* deviceId) noexcept;

} // namespace kestraboot
