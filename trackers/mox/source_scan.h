#pragma once

#include "trackers/mox/device_source.h"

#include <vector>

namespace kestraboot
{

struct PluginHost;

/// The folder of the plugins, relative to the current directory of the process.
inline constexpr const wchar_t* kPluginFolder = L".\\moxplugins";

/// Loads every plugin of the folder, finds those that are sources of devices, and unloads all of them.
/// Empty when anything fails. Throws std::bad_alloc; the plugins are unloaded then too.
[[nodiscard]] std::vector<DeviceSource> FindDeviceSources(PluginHost& host);

} // namespace kestraboot
