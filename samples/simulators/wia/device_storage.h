#pragma once

#include "listed_device.h"

#include <wia.h>

namespace kestraboot::simulators
{

/// The property storage of a device, with one reference.
[[nodiscard]] IWiaPropertyStorage* MakeDeviceStorage(ListedDevice device);

/// How many of them live in this process.
[[nodiscard]] long LiveStorages() noexcept;

} // namespace kestraboot::simulators
