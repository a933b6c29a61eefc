#pragma once

#include "trackers/mox/device_source.h"

#include <vector>

namespace kestraboot
{

struct PluginHost;

/// The folder of the plugins, relative to the current directory of the process.
inline constexpr const wchar_t* kPluginFolder = L".\\moxplugins";

/// Loads every plugin of the folder, finds the device sources, and unloads all of them. Empty if
/// anything fails. Throws std::bad_alloc; the plugins are unloaded then too.
[[nodiscard]] std::vector<DeviceSource> FindDeviceSources(PluginHost& host);

} // namespace kestraboot
