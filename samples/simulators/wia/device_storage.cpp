#include "device_storage.h"

#include "counted.h"
#include "wia_objects.h"

#include <utility>

namespace kestraboot::simulators
{
namespace
{

constexpr GUID kIidWiaPropertyStorage = {
    0x98B5E8A0, 0x29CC, 0x491A, {0xAA, 0xC0, 0xE6, 0xDB, 0x4F, 0xDC, 0xCE, 0xB6}};

std::atomic<long> storages = 0;

class Storage final : public Counted<IWiaPropertyStorage, simulators::UnansweredPropertyStorage>
{
public:
    explicit Storage(ListedDevice shown)
        : Counted(kIidWiaPropertyStorage, storages), device(std::move(shown))
    {
    }

    HRESULT STDMETHODCALLTYPE ReadMultiple(ULONG count, const PROPSPEC wanted[],
                                           PROPVARIANT values[]) override
    {
        bool any = false;
        for (ULONG i = 0; i < count; ++i) {
            values[i] = {};
            if (wanted[i].propid == WIA_DIP_DEV_ID) {
                values[i].vt = VT_BSTR;
                values[i].bstrVal = ::SysAllocString(device.id.c_str());
                any = true;
            } else if (wanted[i].propid == WIA_DIP_DEV_TYPE) {
                values[i].vt = VT_I4;
                values[i].ulVal = device.type;
                any = true;
            }
        }
        return any ? S_OK : S_FALSE;
    }

private:
    ListedDevice device;
};

} // namespace

IWiaPropertyStorage* MakeDeviceStorage(ListedDevice device)
{
    return (new Storage(std::move(device)))->Reference();
}

long LiveStorages() noexcept
{
    return storages;
}

} // namespace kestraboot::simulators
