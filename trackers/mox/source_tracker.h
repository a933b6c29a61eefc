#pragma once

#include "trackers/mox/callback_interface.h"
#include "trackers/mox/device_source.h"
#include "trackers/mox/plugin_host.h"

#include <windows.h>
#include <memory>

namespace kestraboot
{

/// Listens to one device source: loads its plugin, registers a callback, serves a hidden window.
class SourceTracker
{
public:
    /// Throws std::bad_alloc.
    explicit SourceTracker(const DeviceSource& tracked);

    /// Tracks until its message loop gets WM_QUIT, which nothing in this system posts. Ends without
    /// a trace line if the plugin cannot be loaded, has no source manager or refuses the callback,
    /// or if no window can be created. In every case it releases the callback and the source
    /// manager; the plugin stays loaded.
    void Run() noexcept;

    /// Whether a plugin that stays loaded has the address of an entry in this object.
    [[nodiscard]] bool PluginStaysLoaded() const noexcept { return !host.plugins.Entries().empty(); }

private:
    bool OpenSource() noexcept;
    void Listen() const noexcept;

    DeviceSource source;
    PluginHost host;
    std::unique_ptr<CMOXCallbackInterface> callbackWithoutReference;
};

/// Starts the thread of one source. If the thread or its memory is not available, the source is not
/// tracked.
void StartSourceTracker(const DeviceSource& source) noexcept;

/// The thread; its argument is a SourceTracker, which it owns.
DWORD WINAPI SourceTrackerThread(LPVOID tracker) noexcept;

} // namespace kestraboot
