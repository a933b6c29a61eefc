#include "trackers/wia/wia_tracker.h"

#include "trackers/wia/wia_device_tracker.h"

namespace kestraboot
{
namespace
{

constexpr DWORD kPauseAfterFailedGet = 50; // milliseconds

/// The loop delivers the WIA service's calls to this thread's apartment.
void PumpMessages() noexcept
{
    for (;;) {
        MSG message = {};
        const BOOL got = ::GetMessageW(&message, nullptr, 0, 0);
        if (got == 0) {
            return;
        }
        if (got == -1) {
            ::Sleep(kPauseAfterFailedGet); // retried after a pause, so that a lasting failure does not
                                           // occupy a processor
            continue;
        }
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
}

} // namespace

DWORD WINAPI WiaTrackerThread(LPVOID) noexcept
{
    WIADeviceTracker tracker;
    if (tracker.Initialize() && tracker.RegisterForConnect()) {
        ::OutputDebugStringW(L"<***DeviceConnect***><WiaTracker><WIA devices will be detected>.");
    } else {
        ::OutputDebugStringW(L"<***DeviceConnect***><WiaTracker><WIA devices will not be detected>.");
    }
    PumpMessages(); // also without the service: the thread lives as long as the others
    return 0;
}

} // namespace kestraboot
