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
    // Owned by this call, so that nothing is shared with the main thread.
    CKestraBootCommandHandler handler;
    // GetKestraLaunchStatus is not called here: it is the switch of the application that this
    // program belongs to, and the default may be another application.
    handler.LaunchDefaultKestra(deviceKind, deviceId);
}

void StartNothingMore() noexcept
{
    ending.store(true);
}
