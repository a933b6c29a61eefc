#pragma once

#include "foundation/com_pointer.h"
#include "trackers/wia/imaging_type.h"

#include <windows.h>
#include <optional>
#include <wia.h>

namespace kestraboot
{

/// A client of the WIA service: gets the devices that connect, and looks up their types.
///
/// It is on the stack of the thread that uses it. References that others hold never keep it alive,
/// so it must outlast its registration. All of it runs on that thread: callbacks arrive through the
/// thread's message loop. The interface is reachable through QueryInterface alone, because nothing
/// may delete through it.
class WIADeviceTracker final : private IWiaEventCallback
{
public:
    WIADeviceTracker() noexcept = default;
    WIADeviceTracker(const WIADeviceTracker&) = delete;
    WIADeviceTracker& operator=(const WIADeviceTracker&) = delete;

    /// Releases the device manager, then the registration, then the apartment.
    ~WIADeviceTracker() = default;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) noexcept override;
    ULONG STDMETHODCALLTYPE AddRef() noexcept override;
    ULONG STDMETHODCALLTYPE Release() noexcept override; ///< decrements the count and nothing else

    /// Reports the device that connected. Uses the identifier alone; the event is not checked,
    /// because only one event is registered. S_OK, or E_OUTOFMEMORY.
    HRESULT STDMETHODCALLTYPE ImageEventCallback(const GUID* event, BSTR eventDescription, BSTR deviceId,
                                                 BSTR deviceDescription, DWORD deviceType,
                                                 BSTR fullItemName, ULONG* eventType,
                                                 ULONG reserved) noexcept override;

    /// Enters an apartment and gets the device manager. False if there is none. Call it once,
    /// before the operations below.
    [[nodiscard]] bool Initialize() noexcept;

    /// Asks for the connect event of every device.
    [[nodiscard]] bool RegisterForConnect() noexcept;

    /// The type of the listed device with that identifier, compared with case. Other for a null
    /// identifier, for a device that is not listed, and if the service fails.
    [[nodiscard]] ImagingType GetDeviceType(const wchar_t* deviceId) const noexcept;

    /// True if there was a registration to release.
    bool ReleaseRegistration() noexcept;

private:
    // Destroyed from the last to the first.
    std::optional<ComApartmentScope> apartment;
    volatile LONG references = 0;
    UniqueComPointer<IUnknown> registration; ///< null when not registered
    UniqueComPointer<IWiaDevMgr> deviceManager;
};

} // namespace kestraboot
