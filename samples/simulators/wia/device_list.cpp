#include "device_list.h"

#include "counted.h"
#include "device_storage.h"
#include "device_stream.h"
#include "wia_objects.h"

#include <mutex>
#include <objidl.h>
#include <utility>

namespace kestraboot::simulators
{
namespace
{

constexpr GUID kIidEnumWiaDevInfo = {
    0x5E38B83C, 0x8CF1, 0x11D1, {0xBF, 0x92, 0x00, 0x60, 0x08, 0x1E, 0xD8, 0x11}};

std::atomic<long> lists = 0;

class Marshaler : protected IMarshal
{
protected:
    virtual ~Marshaler() = default;
};

class DeviceList final : public Counted<IEnumWIA_DEV_INFO, simulators::UnansweredDeviceEnumerator>,
                         public Marshaler
{
public:
    explicit DeviceList(std::vector<ListedDevice> listed)
        : Counted(kIidEnumWiaDevInfo, lists), devices(std::move(listed))
    {
    }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) override
    {
        if (interfaceId == IID_IMarshal) {
            *object = static_cast<IMarshal*>(this);
            AddRef();
            return S_OK;
        }
        return Counted::QueryInterface(interfaceId, object);
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return Counted::AddRef(); }
    ULONG STDMETHODCALLTYPE Release() override { return Counted::Release(); }

    HRESULT STDMETHODCALLTYPE Next(ULONG count, IWiaPropertyStorage** storages, ULONG* fetched) override
    {
        const std::lock_guard guard(lock);
        ULONG got = 0;
        for (; got < count && next < devices.size(); ++next) {
            storages[got++] = MakeDeviceStorage(devices[next]);
        }
        if (fetched != nullptr) {
            *fetched = got;
        }
        return got == count ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Reset() override
    {
        const std::lock_guard guard(lock);
        next = 0;
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetUnmarshalClass(REFIID, void*, DWORD, void*, DWORD,
                                                CLSID* handler) override
    {
        *handler = kDeviceListClass;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetMarshalSizeMax(REFIID, void*, DWORD, void*, DWORD, DWORD* size) override
    {
        *size = StreamSize(devices);
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE MarshalInterface(IStream* stream, REFIID, void*, DWORD, void*,
                                               DWORD) override
    {
        return WriteDevices(*stream, devices);
    }
    HRESULT STDMETHODCALLTYPE UnmarshalInterface(IStream* stream, REFIID interfaceId,
                                                 void** object) override
    {
        *object = nullptr;
        return ReadDevices(*stream, devices) ? QueryInterface(interfaceId, object) : E_FAIL;
    }
    HRESULT STDMETHODCALLTYPE ReleaseMarshalData(IStream*) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE DisconnectObject(DWORD) override { return S_OK; }

private:
    std::mutex lock;
    std::vector<ListedDevice> devices;
    std::size_t next = 0;
};

} // namespace

IEnumWIA_DEV_INFO* MakeDeviceList(std::vector<ListedDevice> devices)
{
    return (new DeviceList(std::move(devices)))->Reference();
}

HRESULT MakeUnmarshaler(REFIID interfaceId, void** object)
{
    IEnumWIA_DEV_INFO* const made = MakeDeviceList({});
    const HRESULT result = made->QueryInterface(interfaceId, object);
    made->Release();
    return result;
}

long LiveListObjects() noexcept
{
    return lists + LiveStorages();
}

} // namespace kestraboot::simulators
