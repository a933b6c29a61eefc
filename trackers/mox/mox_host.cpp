#include "trackers/mox/mox_host.h"

#include "foundation/error_mode.h"
#include "trackers/mox/plugin_host.h"
#include "trackers/mox/source_scan.h"
#include "trackers/mox/source_tracker.h"

#include <new>

namespace kestraboot
{
namespace
{

constexpr DWORD kWaitForPhoneManager = 60000; // milliseconds
constexpr const wchar_t* kPhoneManagerPath = L".\\moxplugins\\nokiamanager.mox";
constexpr mox::Identifier kPhoneManager = {
    0xEAD73274, 0x3BC9, 0x4878, {0xB3, 0x44, 0x6B, 0xE7, 0x4A, 0x12, 0xB2, 0x7A}};

/// Whether the phone manager can be loaded and returns a source manager. It is unloaded again.
bool IsPhoneManagerAvailable(PluginHost& host) noexcept
{
    mox::PluginDescriptor phoneManager = {};
    phoneManager.identifier = kPhoneManager;
    CopyToField(phoneManager.modulePath, kPhoneManagerPath);

    const ErrorModeScope noErrorBoxes(SEM_FAILCRITICALERRORS);
    if (host.plugins.LoadPlugin(phoneManager) != mox::kSuccess) {
        return false;
    }
    const bool opened = host.managers.OpenSourceManagers() == mox::kSuccess;
    if (opened) {
        host.managers.CloseSourceManagers();
    }
    host.plugins.UnloadPlugin(phoneManager);
    return opened;
}

void AwaitPhoneManager(PluginHost& host) noexcept
{
    while (!IsPhoneManagerAvailable(host)) {
        ::OutputDebugStringW(L"<***DeviceConnect***><NOKIA Devices will not be detected.>");
        ::Sleep(kWaitForPhoneManager);
    }
}

} // namespace

DWORD WINAPI MoxHostThread(LPVOID) noexcept
{
    try {
        PluginHost host;
        AwaitPhoneManager(host);
        for (const DeviceSource& source : FindDeviceSources(host)) {
            StartSourceTracker(source);
        }
    } catch (const std::bad_alloc&) {
        // No memory for the list of sources: no source is tracked.
    }
    return 0;
}

} // namespace kestraboot
