#pragma once

#include "kestraboot/mox_plugin.h"

#include <windows.h>
#include <atomic>

namespace kestraboot
{

/// The callback that a plugin calls when a device arrives: turns the device record into a report to
/// the host's callback.
///
/// Created with no reference: the code that registers it adds the first. It frees itself with the
/// last. Callable from any thread; its own lock admits one notification at a time, and the plugin
/// is never called under it.
class CMOXCallbackInterface final : public mox::ICallbackInterface
{
public:
    CMOXCallbackInterface() noexcept;
    CMOXCallbackInterface(const CMOXCallbackInterface&) = delete;
    CMOXCallbackInterface& operator=(const CMOXCallbackInterface&) = delete;
    /// For an owner that could not add a reference, and for Release.
    ~CMOXCallbackInterface();

    /// Has no other interface; leaves the output unchanged, as the plugin kit documents.
    bool Query(mox::InterfaceNumber number, void** object) noexcept override;
    std::uint32_t AddReference() noexcept override;
    std::uint32_t Release() noexcept override;
    mox::Status Notify(std::uint64_t unused, const mox::DeviceRecord* record) noexcept override;

private:
    std::atomic<std::uint32_t> references = 0;
    CRITICAL_SECTION notifying;
};

} // namespace kestraboot
