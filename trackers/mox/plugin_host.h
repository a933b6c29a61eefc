#pragma once

#include "trackers/mox/plugin_list.h"
#include "trackers/mox/source_managers.h"

namespace kestraboot
{

/// The state of one host of plugins: those that it has loaded, and their open source managers. The scan
/// has one, and each tracker has its own. One thread at a time.
struct PluginHost {
    PluginList plugins;
    SourceManagers managers{plugins}; // after the list: closed before it goes
};

} // namespace kestraboot
