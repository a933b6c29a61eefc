#include "trackers/wia/wia_device_tracker.h"

#include "foundation/trace.h"
#include "service/dispatch.h"
#include "trackers/wia/wia_device_list.h"
#include "trackers/wia/wia_identifiers.h"

#include <string>

namespace kestraboot
{
namespace
{

void ReportConnected(const wchar_t* deviceId, ImagingType type)
{
    const std::wstring tagged = std::wstring(IdentityPrefix(type)) + deviceId;
    std::wstring kind = ImagingKindWord(type);
    std::wstring identity = deviceId;
    TraceBuffer line = {};
    FormatTraceLine(line, L"<***DeviceConnect***><WiaTracker><WIA DEVICE><%ls>.", tagged.c_str());
    ::OutputDebugStringW(line);
    NotifyDeviceConnect(kind, identity);
}

} // namespace

HRESULT WIADeviceTracker::QueryInterface(REFIID interfaceId, void** object) noexcept
{
    if (object == nullptr) {
        return E_POINTER;
    }
    if (interfaceId != kIidUnknown && interfaceId != kIidWiaEventCallback) {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    *object = static_cast<IWiaEventCallback*>(this);
    AddRef();
    return S_OK;
}

ULONG WIADeviceTracker::AddRef() noexcept
{
    return static_cast<ULONG>(::InterlockedIncrement(&references));
}

ULONG WIADeviceTracker::Release() noexcept
{
    return static_cast<ULONG>(::InterlockedDecrement(&references));
}

HRESULT WIADeviceTracker::ImageEventCallback(const GUID*, BSTR, BSTR deviceId, BSTR, DWORD, BSTR, ULONG*,
                                             ULONG) noexcept
{
    try {
        // The service owns its string, and the host may take long: work on a copy.
        const std::wstring copy = deviceId != nullptr ? deviceId : L"";
        const ImagingType type = GetDeviceType(deviceId != nullptr ? copy.c_str() : nullptr);
        if (type == ImagingType::Other) {
            ::OutputDebugStringW(L"Could not get the device type."); // this line has no tags
            return S_OK;
        }
        ReportConnected(copy.c_str(), type);
        return S_OK;
    } catch (...) {
        return E_OUTOFMEMORY; // only copying text can fail
    }
}

bool WIADeviceTracker::Initialize() noexcept
{
    apartment.emplace();
    void* created = nullptr;
    if (FAILED(::CoCreateInstance(kClsidWiaDevMgr, nullptr, CLSCTX_LOCAL_SERVER, kIidWiaDevMgr,
                                  &created))) {
        return false;
    }
    deviceManager.reset(static_cast<IWiaDevMgr*>(created));
    return static_cast<bool>(deviceManager);
}

bool WIADeviceTracker::RegisterForConnect() noexcept
{
    constexpr LONG kFlags = 0; // the service ignores them
    if (!deviceManager) {
        return false;
    }
    IUnknown* registered = nullptr;
    const HRESULT result = deviceManager.get()->RegisterEventCallbackInterface(
        kFlags, nullptr, &kWiaEventDeviceConnected, this, &registered);
    registration.reset(registered);
    return SUCCEEDED(result);
}

ImagingType WIADeviceTracker::GetDeviceType(const wchar_t* deviceId) const noexcept
{
    if (deviceId == nullptr || !deviceManager) {
        return ImagingType::Other;
    }
    return FindWiaDeviceType(*deviceManager.get(), deviceId);
}

bool WIADeviceTracker::ReleaseRegistration() noexcept
{
    const bool registered = static_cast<bool>(registration);
    registration.reset();
    return registered;
}

} // namespace kestraboot
