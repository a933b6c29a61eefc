// Devices in a stream: their number; of each the type, the number of characters, and each character, 32
// bits each.
#pragma once

#include "listed_device.h"

#include <objidl.h>
#include <vector>

namespace kestraboot::simulators
{

/// In bytes.
[[nodiscard]] DWORD StreamSize(const std::vector<ListedDevice>& devices);

HRESULT WriteDevices(IStream& stream, const std::vector<ListedDevice>& devices);

/// Adds the devices of a stream. False if it is not one of WriteDevices.
[[nodiscard]] bool ReadDevices(IStream& stream, std::vector<ListedDevice>& devices);

} // namespace kestraboot::simulators
