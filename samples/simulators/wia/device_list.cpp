#include "device_list.h"

#include "counted.h"
#include "wia_objects.h"

#include <mutex>
#include <objidl.h>
#include <utility>

namespace kestraboot::simulators
{
namespace
{

constexpr GUID kIidWiaPropertyStorage = {
    0x98B5E8A0, 0x29CC, 0x491A, {0xAA, 0xC0, 0xE6, 0xDB, 0x4F, 0xDC, 0xCE, 0xB6}};
constexpr GUID kIidEnumWiaDevInfo = {
    0x5E38B83C, 0x8CF1, 0x11D1, {0xBF, 0x92, 0x00, 0x60, 0x08, 0x1E, 0xD8, 0x11}};

std::atomic<long> live = 0;

class Storage final : public Counted<IWiaPropertyStorage, simulators::UnansweredPropertyStorage>
{
public:
    explicit Storage(ListedDevice shown)
        : Counted(kIidWiaPropertyStorage, live), device(std::move(shown))
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

template <typename Value>
HRESULT Put(IStream& stream, const Value& value)
{
    return stream.Write(&value, sizeof value, nullptr);
}

template <typename Value>
bool Get(IStream& stream, Value& value)
{
    ULONG got = 0;
    return SUCCEEDED(stream.Read(&value, sizeof value, &got)) && got == sizeof value;
}

bool GetDevice(IStream& stream, ListedDevice& device)
{
    DWORD length = 0;
    if (!Get(stream, device.type) || !Get(stream, length) || length > 65'536) {
        return false;
    }
    for (DWORD i = 0; i < length; ++i) {
        DWORD character = 0;
        if (!Get(stream, character)) {
            return false;
        }
        device.id += static_cast<wchar_t>(character);
    }
    return true;
}

class Marshaler : protected IMarshal
{
protected:
    virtual ~Marshaler() = default;
};

// In the stream: the number of devices; of each the type, the number of characters, and each character,
// 32 bits each.
class DeviceList final : public Counted<IEnumWIA_DEV_INFO, simulators::UnansweredDeviceEnumerator>,
                         public Marshaler
{
public:
    explicit DeviceList(std::vector<ListedDevice> listed)
        : Counted(kIidEnumWiaDevInfo, live), devices(std::move(listed))
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
            storages[got++] = (new Storage(devices[next]))->Reference();
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
        std::size_t numbers = 1;
        for (const ListedDevice& device : devices) {
            numbers += 2 + device.id.size();
        }
        *size = static_cast<DWORD>(numbers * sizeof(DWORD));
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE MarshalInterface(IStream* stream, REFIID, void*, DWORD, void*,
                                               DWORD) override
    {
        HRESULT result = Put(*stream, static_cast<DWORD>(devices.size()));
        for (const ListedDevice& device : devices) {
            result = SUCCEEDED(result) ? Put(*stream, device.type) : result;
            result = SUCCEEDED(result) ? Put(*stream, static_cast<DWORD>(device.id.size())) : result;
            for (const wchar_t character : device.id) {
                result = SUCCEEDED(result) ? Put(*stream, static_cast<DWORD>(character)) : result;
            }
        }
        return result;
    }
    HRESULT STDMETHODCALLTYPE UnmarshalInterface(IStream* stream, REFIID interfaceId,
                                                 void** object) override
    {
        *object = nullptr;
        DWORD count = 0;
        if (!Get(*stream, count) || count > 65'536) {
            return E_FAIL;
        }
        for (; count > 0; --count) {
            ListedDevice device = {};
            if (!GetDevice(*stream, device)) {
                return E_FAIL;
            }
            devices.push_back(std::move(device));
        }
        return QueryInterface(interfaceId, object);
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
    return live;
}

} // namespace kestraboot::simulators
