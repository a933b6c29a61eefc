#include "trackers/wia/wia_tracker.h"

#include "trackers/wia/wia_device_tracker.h"

namespace kestraboot
{
namespace
{

constexpr DWORD kPauseAfterFailedGet = 50; // milliseconds

/// The WIA service's calls come into this thread's apartment through the loop.
void PumpMessages() noexcept
{
    for (;;) {
        MSG message = {};
        const BOOL got = ::GetMessageW(&message, nullptr, 0, 0);
        if (got == 0) {
            return;
        }
        if (got == -1) {
            ::Sleep(kPauseAfterFailedGet); // tried again, but not at the cost of a whole processor
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
    PumpMessages(); // without the service too: the thread lives as long as the others
    return 0;
}

} // namespace kestraboot
