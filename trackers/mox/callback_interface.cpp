#include "trackers/mox/callback_interface.h"

#include "foundation/text.h"
#include "service/device_kind.h"
#include "service/dispatch.h"

#include <new>
#include <string>

namespace kestraboot
{
namespace
{

class NotifyScope
{
public:
    explicit NotifyScope(CRITICAL_SECTION& entered) noexcept : section(entered)
    {
        ::EnterCriticalSection(&section);
    }
    NotifyScope(const NotifyScope&) = delete;
    NotifyScope& operator=(const NotifyScope&) = delete;
    ~NotifyScope() { ::LeaveCriticalSection(&section); }

private:
    CRITICAL_SECTION& section;
};

/// A phone is present before it is readable; every other device is ready when it is reported.
bool CanBeReported(const mox::DeviceRecord& device) noexcept
{
    return device.deviceKind != mox::kKindMobile || device.mobileReady == mox::kMobileReady;
}

void Report(const mox::DeviceRecord& device)
{
    std::wstring kind = DeviceKindWord(static_cast<DeviceKind>(device.deviceKind));
    // At most 259 characters, with or without a terminator in the field.
    std::wstring deviceId(device.deviceId, ::wcsnlen(device.deviceId, kFieldCapacity - 1));
    NotifyDeviceConnect(kind, deviceId);
}

} // namespace

CMOXCallbackInterface::CMOXCallbackInterface() noexcept
{
    ::InitializeCriticalSection(&notifying);
}

CMOXCallbackInterface::~CMOXCallbackInterface()
{
    ::DeleteCriticalSection(&notifying);
}

bool CMOXCallbackInterface::Query(mox::InterfaceNumber, void**) noexcept
{
    return false;
}

std::uint32_t CMOXCallbackInterface::AddReference() noexcept
{
    return ++references;
}

std::uint32_t CMOXCallbackInterface::Release() noexcept
{
    const std::uint32_t remaining = --references;
    if (remaining == 0) {
        delete this;
    }
    return remaining;
}

mox::Status CMOXCallbackInterface::Notify(std::uint64_t, const mox::DeviceRecord* record) noexcept
{
    try {
        const NotifyScope scope(notifying);
        if (record == nullptr) {
            return mox::kBadArgument;
        }
        if (record->eventCode != mox::kDeviceArrived || record->size != mox::kDeviceRecordSize) {
            return mox::kSuccess;
        }
        const mox::DeviceRecord device = *record;
        if (CanBeReported(device)) {
            Report(device);
        }
        return mox::kSuccess;
    } catch (const std::bad_alloc&) {
        return mox::kOutOfMemory;
    } catch (...) {
        return mox::kException;
    }
}

} // namespace kestraboot
