#include "trackers/mox/source_scan.h"

#include "trackers/mox/plugin_host.h"
#include "trackers/mox/source_enumerator.h"

namespace kestraboot
{
namespace
{

/// Leaves no plugin loaded, however the scan ends.
class ScanScope
{
public:
    explicit ScanScope(PluginHost& scanned) noexcept : host(scanned) {}
    ScanScope(const ScanScope&) = delete;
    ScanScope& operator=(const ScanScope&) = delete;
    ~ScanScope()
    {
        host.managers.CloseSourceManagers();
        host.plugins.UnloadAllPlugins();
    }

private:
    PluginHost& host;
};

std::vector<DeviceSource> WalkSources(const SourceManagers& managers, mox::IEnumSourceManager& walk)
{
    std::vector<DeviceSource> sources;
    mox::SourceInfo info = {};
    info.version = mox::kSourceInfoVersion;
    info.size = mox::kSourceInfoSize;
    walk.Reset();
    while (walk.Next(&info) == mox::kSuccess) {
        std::uint32_t category = 0;
        if (managers.GetSourceCategory(info.identifier, &category) == mox::kSuccess &&
            category == mox::kDeviceSourceCategory) {
            sources.push_back({info.name, info.identifier, info.value, {}});
        }
    }
    return sources;
}

void AddModule(const PluginList& plugins, DeviceSource& source)
{
    const mox::PluginDescriptor* plugin = nullptr;
    if (plugins.FindPluginById(source.identifier, &plugin) == mox::kSuccess) {
        source.modulePath = plugin->modulePath;
        source.name = plugin->name;
    }
}

} // namespace

std::vector<DeviceSource> FindDeviceSources(PluginHost& host)
{
    const ScanScope unloadAtTheEnd(host);
    mox::IEnumSourceManager* made = nullptr;
    if (host.plugins.SetPluginFolder(kPluginFolder) != mox::kSuccess ||
        host.plugins.LoadPluginFolder() == 0 || host.managers.OpenSourceManagers() != mox::kSuccess ||
        CreateSourceEnumerator(host.plugins.Entries(), &made) != mox::kSuccess) {
        return {};
    }
    PluginReference<mox::IEnumSourceManager> walk;
    walk.Take(made);
    std::vector<DeviceSource> sources = WalkSources(host.managers, *made);
    walk.Release();

    host.managers.CloseSourceManagers();
    for (DeviceSource& source : sources) {
        AddModule(host.plugins, source);
    }
    return sources;
}

} // namespace kestraboot
