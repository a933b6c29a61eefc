#include "tests/trackers/wia/fake_wia.h"

#include "samples/simulators/wia/wia_objects.h"

#include <gtest/gtest.h>

namespace kestraboot::tests
{
namespace
{

class PlainUnknown : protected IUnknown
{
protected:
    virtual ~PlainUnknown() = default;
};

/// Counts its references, and counts itself among the service's live objects.
template <typename Interface, typename Base>
class Counted : public Base
{
public:
    Counted(FakeWiaService& owner, const char* calledWhenReleased)
        : service(owner), name(calledWhenReleased)
    {
        ++service.liveObjects;
    }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

    Interface* Reference() noexcept { return this; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) noexcept override
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() noexcept override
    {
        const ULONG left = --references;
        if (left == 0) {
            --service.liveObjects;
            service.released.emplace_back(name);
            delete this;
        }
        return left;
    }

protected:
    ~Counted() override = default;
    FakeWiaService& service;

private:
    const char* name;
    ULONG references = 1;
};

PROPVARIANT CopyOf(const PROPVARIANT& value)
{
    PROPVARIANT copy = value;
    if (value.vt == VT_BSTR && value.bstrVal != nullptr) {
        copy.bstrVal = ::SysAllocString(value.bstrVal);
    }
    return copy;
}

class Storage final : public Counted<IWiaPropertyStorage, simulators::UnansweredPropertyStorage>
{
public:
    Storage(FakeWiaService& owner, const FakeWiaDevice& shown) : Counted(owner, "storage"), device(shown)
    {
    }

    HRESULT STDMETHODCALLTYPE ReadMultiple(ULONG count, const PROPSPEC wanted[],
                                           PROPVARIANT values[]) noexcept override
    {
        service.askedProperties.assign(wanted, wanted + count);
        for (ULONG i = 0; i < count; ++i) {
            values[i] = CopyOf(wanted[i].propid == WIA_DIP_DEV_ID ? device.id : device.type);
        }
        return device.read;
    }

private:
    FakeWiaDevice device;
};

class Enumerator final : public Counted<IEnumWIA_DEV_INFO, simulators::UnansweredDeviceEnumerator>
{
public:
    explicit Enumerator(FakeWiaService& owner) : Counted(owner, "enumerator") {}

    HRESULT STDMETHODCALLTYPE Next(ULONG count, IWiaPropertyStorage** storages,
                                   ULONG* fetched) noexcept override
    {
        EXPECT_EQ(count, 1U);
        ++service.nexts;
        *fetched = 0;
        if (next == service.devices.size() && service.endless) {
            next = 0;
        }
        if (next == service.devices.size()) {
            return service.end;
        }
        const FakeWiaDevice& device = service.devices[next++];
        if (!device.isNull) {
            *storages = (new Storage(service, device))->Reference();
            *fetched = 1;
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reset() noexcept override
    {
        ++service.resets;
        next = 0;
        return S_OK;
    }

private:
    std::size_t next = service.devices.size(); ///< only a list that was reset is at its start
};

class Registration final : public Counted<IUnknown, PlainUnknown>
{
public:
    explicit Registration(FakeWiaService& owner) : Counted(owner, "registration") {}

private:
    ~Registration() override
    {
        service.registeredCallback->Release();
        service.registeredCallback = nullptr;
    }
};

class Manager final : public Counted<IWiaDevMgr, simulators::UnansweredDeviceManager>
{
public:
    explicit Manager(FakeWiaService& owner) : Counted(owner, "manager") {}

    HRESULT STDMETHODCALLTYPE EnumDeviceInfo(LONG flags, IEnumWIA_DEV_INFO** created) noexcept override
    {
        service.enumeratedFlags = flags;
        if (SUCCEEDED(service.enumerate)) {
            *created = (new Enumerator(service))->Reference();
        }
        return service.enumerate;
    }
    HRESULT STDMETHODCALLTYPE RegisterEventCallbackInterface(LONG flags, BSTR device, const GUID* event,
                                                             IWiaEventCallback* callback,
                                                             IUnknown** registered) noexcept override
    {
        service.registeredFlags = flags;
        service.registeredForOneDevice = device != nullptr;
        service.registeredEvent = *event;
        if (SUCCEEDED(service.registers)) {
            callback->AddRef();
            service.registeredCallback = callback;
            *registered = (new Registration(service))->Reference();
        }
        return service.registers;
    }
};

} // namespace

FakeWiaDevice WiaDevice(const wchar_t* id, unsigned stiType)
{
    FakeWiaDevice device;
    device.id.vt = VT_BSTR;
    device.id.bstrVal = const_cast<wchar_t*>(id); // only ever copied
    device.type.vt = VT_I4;
    device.type.lVal = static_cast<LONG>(stiType << 16 | 0x0001U); // a subtype in the low half
    return device;
}

FakeWiaService::FakeWiaService()
    : creation([this](const CLSID& classId, IUnknown* outer, DWORD context, const IID& interfaceId,
                      void** object) {
          createdClass = classId;
          createdAggregated = outer != nullptr;
          createdContext = context;
          createdInterface = interfaceId;
          *object = create == S_OK ? static_cast<void*>((new Manager(*this))->Reference()) : nullptr;
          return create;
      }),
      apartmentEnd([this] {
          released.emplace_back("apartment");
          apartmentEnd.CallOriginal();
      })
{
}

FakeWiaService::~FakeWiaService()
{
    EXPECT_EQ(liveObjects, 0) << "COM references were left behind";
}

} // namespace kestraboot::tests
