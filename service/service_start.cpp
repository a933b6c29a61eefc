// Which tracker runs on which Windows. The one file of this room that knows the trackers.
#include "foundation/handles.h"
#include "kestraboot/device_connect.h"
#include "service/dispatch.h"
#include "service/windows_version.h"
#include "trackers/mox/mox_host.h"
#include "trackers/still_image/sti_tracker.h"
#include "trackers/volume/volume_tracker.h"
#include "trackers/wia/wia_tracker.h"

using kestraboot::GetWindowsVersionClass;
using kestraboot::WindowsVersionClass;

namespace
{

void StartTracker(LPTHREAD_START_ROUTINE entry) noexcept
{
    // The handle stays open: trackers run until the process ends, and nothing waits for one. A
    // tracker whose thread cannot be created reports nothing.
    static_cast<void>(::CreateThread(nullptr, 0, entry, nullptr, 0, nullptr));
}

} // namespace

void StartDeviceConnectService()
{
    kestraboot::InitializeDispatch();
    const WindowsVersionClass version = GetWindowsVersionClass();
    if (version != WindowsVersionClass::Other) {
        StartTracker(kestraboot::VolumeTrackerThread);
    }
    if (version == WindowsVersionClass::Xp || version == WindowsVersionClass::Vista) {
        StartTracker(kestraboot::WiaTrackerThread);
    }
    if (version != WindowsVersionClass::Other) {
        StartTracker(kestraboot::StiTrackerThread);
    }
    StartTracker(kestraboot::MoxHostThread);
}
