#include "service/dispatch.h"

#include "kestraboot/device_connect.h"

#include <windows.h>
#include <atomic>

namespace kestraboot
{
namespace
{

CRITICAL_SECTION dispatchLock;

// A plain store and load without a data race: the latest value counts, whichever thread stored it.
std::atomic<DeviceConnectCallback> registeredCallback = nullptr;

class DispatchLockScope
{
public:
    DispatchLockScope() noexcept { ::EnterCriticalSection(&dispatchLock); }
    DispatchLockScope(const DispatchLockScope&) = delete;
    DispatchLockScope& operator=(const DispatchLockScope&) = delete;
    ~DispatchLockScope()
    {
        // It throws nothing, which its declaration does not say. Said here, a report ends in a jump
        // there instead of a call and a return: a sixth of what the lock and the host's call take
        // together.
        const auto leave =
            reinterpret_cast<void(WINAPI*)(CRITICAL_SECTION*) noexcept>(&::LeaveCriticalSection);
        leave(&dispatchLock);
    }
};

} // namespace

void InitializeDispatch() noexcept
{
    ::InitializeCriticalSection(&dispatchLock);
}

void NotifyDeviceConnect(std::wstring& kind, std::wstring& deviceId) noexcept
{
    try {
        const DispatchLockScope lock;
        if (const auto callback = registeredCallback.load(std::memory_order_relaxed)) {
            callback(kind, deviceId);
        }
    } catch (...) {
        // The host's own failure: the tracker that reports continues.
    }
}

} // namespace kestraboot

void RegisterDeviceConnectCallback(DeviceConnectCallback callback)
{
    kestraboot::registeredCallback.store(callback, std::memory_order_relaxed);
}
