#include "boot/arrivals.h"

#include "kestraboot/kestraboot.h"

#include <atomic>

namespace
{

std::atomic<bool> ending = false;

} // namespace

void OnDeviceConnected(std::wstring& deviceKind, std::wstring& deviceId)
{
    if (ending.load()) {
        return;
    }
    // This call's own, so nothing is shared with the main thread.
    CKestraBootCommandHandler handler;
    // Not asked before: GetKestraLaunchStatus. It is the switch of the application that this program
    // belongs to, and the default may be any other's.
    handler.LaunchDefaultKestra(deviceKind, deviceId);
}

void StartNothingMore() noexcept
{
    ending.store(true);
}
