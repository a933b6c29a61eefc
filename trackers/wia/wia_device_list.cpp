#include "trackers/wia/wia_device_list.h"

#include "foundation/com_pointer.h"

#include <cwchar>

namespace kestraboot
{
namespace
{

// More devices than any machine has: a service that never reports the end must not block the thread
// forever.
constexpr int kMostDevices = 65'535;

/// The two properties of one device. Frees the values that were read.
class DeviceProperties
{
public:
    DeviceProperties() noexcept = default;
    DeviceProperties(const DeviceProperties&) = delete;
    DeviceProperties& operator=(const DeviceProperties&) = delete;
    ~DeviceProperties() { static_cast<void>(::FreePropVariantArray(kCount, values)); }

    /// S_FALSE means that the device has neither.
    [[nodiscard]] bool Read(IWiaPropertyStorage& storage) noexcept
    {
        PROPSPEC wanted[kCount] = {};
        wanted[kId].ulKind = PRSPEC_PROPID;
        wanted[kId].propid = WIA_DIP_DEV_ID;
        wanted[kType].ulKind = PRSPEC_PROPID;
        wanted[kType].propid = WIA_DIP_DEV_TYPE;
        const HRESULT result = storage.ReadMultiple(kCount, wanted, values);
        return SUCCEEDED(result) && result != S_FALSE;
    }

    /// Null if the device has none, or one that is not text.
    [[nodiscard]] const wchar_t* Id() const noexcept
    {
        return values[kId].vt == VT_BSTR ? values[kId].bstrVal : nullptr;
    }

    [[nodiscard]] ImagingType Type() const noexcept
    {
        const bool isNumber = values[kType].vt == VT_I4 || values[kType].vt == VT_UI4;
        return isNumber ? ImagingTypeOf(values[kType].ulVal) : ImagingType::Other;
    }

private:
    static constexpr ULONG kId = 0;
    static constexpr ULONG kType = 1;
    static constexpr ULONG kCount = 2;
    PROPVARIANT values[kCount] = {};
};

UniqueComPointer<IEnumWIA_DEV_INFO> ListLocalDevices(IWiaDevMgr& deviceManager) noexcept
{
    IEnumWIA_DEV_INFO* listed = nullptr;
    const HRESULT result = deviceManager.EnumDeviceInfo(WIA_DEVINFO_ENUM_LOCAL, &listed);
    UniqueComPointer<IEnumWIA_DEV_INFO> devices(listed);
    if (FAILED(result) || result == S_FALSE) {
        devices.reset();
    }
    return devices;
}

} // namespace

ImagingType FindWiaDeviceType(IWiaDevMgr& deviceManager, const wchar_t* deviceId) noexcept
{
    const UniqueComPointer<IEnumWIA_DEV_INFO> devices = ListLocalDevices(deviceManager);
    if (!devices) {
        return ImagingType::Other;
    }
    static_cast<void>(devices.get()->Reset()); // a new list is at its start anyway
    for (int visited = 0; visited < kMostDevices; ++visited) {
        IWiaPropertyStorage* next = nullptr;
        ULONG fetched = 0;
        const HRESULT result = devices.get()->Next(1, &next, &fetched);
        const UniqueComPointer<IWiaPropertyStorage> device(next);
        if (FAILED(result) || result == S_FALSE) {
            break;
        }
        DeviceProperties properties;
        if (!device || !properties.Read(*device.get()) || properties.Id() == nullptr) {
            continue;
        }
        if (std::wcscmp(properties.Id(), deviceId) == 0) {
            return properties.Type();
        }
    }
    return ImagingType::Other;
}

} // namespace kestraboot
