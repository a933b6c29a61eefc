#pragma once

#include "kestraboot/mox_plugin.h"

#include <string>

namespace kestraboot
{

/// A plugin that is a device source, as the scan found it.
struct DeviceSource {
    std::wstring name; ///< the plugin's, at most 259 characters
    mox::Identifier identifier = {};
    std::uint32_t value = 0;
    std::wstring modulePath; ///< relative to the current directory; empty if the plugin is not listed
};

} // namespace kestraboot
