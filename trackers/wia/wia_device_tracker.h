#pragma once

#include "foundation/com_pointer.h"
#include "trackers/wia/imaging_type.h"

#include <windows.h>
#include <optional>
#include <wia.h>

namespace kestraboot
{

/// A client of the WIA service: hears of devices that connect, and looks up what a device is.
///
/// Lives on the stack of the thread that uses it; references that others hold never keep it alive, so it
/// must outlast its registration. All of it runs on that thread: callbacks come in through the thread's
/// message loop. The interface is to be had through QueryInterface alone: nothing may delete through it.
class WIADeviceTracker final : private IWiaEventCallback
{
public:
    WIADeviceTracker() noexcept = default;
    WIADeviceTracker(const WIADeviceTracker&) = delete;
    WIADeviceTracker& operator=(const WIADeviceTracker&) = delete;

    /// Gives up the device manager, then the registration, then the apartment.
    ~WIADeviceTracker() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override;
    ULONG STDMETHODCALLTYPE Release() noexcept override; ///< counts down and no more

    /// Reports the device that connected. The identifier alone is used; which event it was is not looked
    /// at, since one event alone is registered. S_OK, or E_OUTOFMEMORY.
    HRESULT STDMETHODCALLTYPE ImageEventCallback(const GUID* event, BSTR eventDescription, BSTR deviceId,
                                                 BSTR deviceDescription, DWORD deviceType,
                                                 BSTR fullItemName, ULONG* eventType,
                                                 ULONG reserved) noexcept override;

    /// Enters an apartment and gets the device manager. False without one. Call it once, before the
    /// operations below.
    [[nodiscard]] bool Initialize() noexcept;

    /// Asks for the connect event of every device.
    [[nodiscard]] bool RegisterForConnect() noexcept;

    /// What the listed device with that identifier is. The identifier's letter case counts. Other for a
    /// null identifier, a device that is not listed, and whenever the service fails.
    [[nodiscard]] ImagingType GetDeviceType(const wchar_t* deviceId) const noexcept;

    /// True when there was a registration to release.
    bool ReleaseRegistration() noexcept;

private:
    // Destroyed from the last to the first.
    std::optional<ComApartmentScope> apartment;
    volatile LONG references = 0;
    UniqueComPointer<IUnknown> registration; ///< null when not registered
    UniqueComPointer<IWiaDevMgr> deviceManager;
};

} // namespace kestraboot
