// The tracker's window and its message loop. Windows reports to every top-level window that its
// tree of devices changed, but not what changed. The tracker then compares the still-image devices
// with those of the previous scan.
#include "trackers/still_image/sti_tracker.h"

#include "trackers/still_image/sti_devices.h"
#include "trackers/still_image/sti_report.h"

#include <dbt.h>

namespace kestraboot
{
namespace
{

bool Open(StiDevices& devices) noexcept
{
    try {
        return devices.OpenSti();
    } catch (...) {
        return false; // no memory for the devices that are present
    }
}

void ReportNewDevice(StiDevices& devices) noexcept
{
    try {
        if (const StiDeviceRecord* const device = devices.FindNewDevice()) {
            ReportStiDevice(*device);
        }
    } catch (...) {
        // No memory: this change is lost, the tracker goes on.
    }
}

constexpr DWORD kPauseAfterFailedGet = 50; // milliseconds

void PumpMessages(HWND window, StiDevices& devices) noexcept
{
    for (;;) {
        MSG message = {};
        const BOOL got = ::GetMessageW(&message, window, WM_DEVICECHANGE, WM_DEVICECHANGE);
        if (got == 0) {
            return;
        }
        if (got == -1) {
            ::Sleep(kPauseAfterFailedGet); // retried after a pause, so that a lasting failure does not
                                           // occupy a processor
            continue;
        }
        if (message.wParam == DBT_DEVNODES_CHANGED) {
            ReportNewDevice(devices);
        }
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
}

} // namespace

DWORD WINAPI StiTrackerThread(LPVOID) noexcept
{
    StiDevices devices;
    if (Open(devices)) {
        ::OutputDebugStringW(L"<***DeviceConnect***><StiTracker><STI Devices will be detected.>");
    } else {
        ::OutputDebugStringW(L"<***DeviceConnect***><StiTracker><STI Devices will not be detected.>");
    }
    // Without still imaging the loop also runs, and finds nothing. If the window cannot be created,
    // the loop waits on none.
    const HWND window = ::CreateWindowExW(0, L"STATIC", L"STITrackerWindow", WS_POPUP, 20, 20, 200, 200,
                                          nullptr, nullptr, ::GetModuleHandleW(nullptr), nullptr);
    PumpMessages(window, devices);
    devices.Clear();
    return 0;
}

} // namespace kestraboot
