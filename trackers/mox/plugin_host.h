#pragma once

#include "trackers/mox/plugin_list.h"
#include "trackers/mox/source_managers.h"

namespace kestraboot
{

/// The state of one host of plugins: the plugins that it has loaded, and their open source
/// managers. The scan has one, and each tracker has its own. Use it from one thread at a time.
struct PluginHost {
    PluginList plugins;
    SourceManagers managers{plugins}; // declared after the list, so that it is closed first
};

} // namespace kestraboot
