#include "tests/endurance/faults/wia_camera.h"

#include "samples/simulators/wia/wia_objects.h"
#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/journal.h"

#include <algorithm>

namespace kestraboot::tests
{
namespace
{

constexpr DWORD kWiaCamera = 2U << 16;

int references = 0; ///< to all objects here
int texts = 0;      ///< given out and not freed
bool listEnded = false;
IWiaEventCallback* callback = nullptr;

std::optional<HRESULT> Failure(const char* operation) noexcept
{
    const auto failure = FailureNow(operation);
    return failure ? std::optional(static_cast<HRESULT>(*failure)) : std::nullopt;
}

/// An object that is never freed and counts the references to all of them.
template <typename Base>
class Static : public Base
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) noexcept override
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return static_cast<ULONG>(++references); }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return static_cast<ULONG>(--references); }
};

class PlainUnknown : protected IUnknown
{
public:
    virtual ~PlainUnknown() = default;
};

class Registration final : public Static<PlainUnknown>
{
public:
    ULONG STDMETHODCALLTYPE Release() noexcept override
    {
        callback->Release();
        callback = nullptr;
        return static_cast<ULONG>(--references);
    }
    IUnknown* Given() noexcept
    {
        ++references;
        return this;
    }
} registration;

class Storage final : public Static<simulators::UnansweredPropertyStorage>
{
public:
    HRESULT STDMETHODCALLTYPE ReadMultiple(ULONG count, const PROPSPEC wanted[],
                                           PROPVARIANT values[]) noexcept override
    {
        for (ULONG i = 0; i < count; ++i) {
            values[i].vt = VT_EMPTY;
        }
        if (const auto failure = Failure("IWiaPropertyStorage::ReadMultiple")) {
            return *failure;
        }
        for (ULONG i = 0; i < count; ++i) {
            const bool isId = wanted[i].propid == WIA_DIP_DEV_ID;
            values[i].vt = isId ? VT_BSTR : VT_I4;
            if (isId) {
                values[i].bstrVal = ::SysAllocString(kCamera);
                ++texts;
            } else {
                values[i].lVal = kWiaCamera;
            }
        }
        return S_OK;
    }
    IWiaPropertyStorage* Given() noexcept
    {
        ++references;
        return this;
    }
} storage;

class Enumerator final : public Static<simulators::UnansweredDeviceEnumerator>
{
public:
    HRESULT STDMETHODCALLTYPE Reset() noexcept override
    {
        if (const auto failure = Failure("IEnumWIA_DEV_INFO::Reset")) {
            return *failure;
        }
        listEnded = false;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Next(ULONG, IWiaPropertyStorage** next, ULONG* fetched) noexcept override
    {
        *fetched = 0;
        *next = nullptr;
        if (const auto failure = Failure("IEnumWIA_DEV_INFO::Next")) {
            return *failure;
        }
        *fetched = listEnded ? 0 : 1;
        *next = listEnded ? nullptr : storage.Given();
        const HRESULT result = listEnded ? S_FALSE : S_OK;
        listEnded = true;
        return result;
    }
    IEnumWIA_DEV_INFO* Given() noexcept
    {
        ++references;
        return this;
    }
} enumerator;

class Manager final : public Static<simulators::UnansweredDeviceManager>
{
public:
    HRESULT STDMETHODCALLTYPE EnumDeviceInfo(LONG, IEnumWIA_DEV_INFO** created) noexcept override
    {
        *created = nullptr;
        if (const auto failure = Failure("IWiaDevMgr::EnumDeviceInfo")) {
            return *failure;
        }
        *created = enumerator.Given();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE RegisterEventCallbackInterface(LONG, BSTR, const GUID*,
                                                             IWiaEventCallback* given,
                                                             IUnknown** registered) noexcept override
    {
        *registered = nullptr;
        if (const auto failure = Failure("IWiaDevMgr::RegisterEventCallbackInterface")) {
            return *failure;
        }
        callback = given;
        callback->AddRef();
        *registered = registration.Given();
        return S_OK;
    }
    IWiaDevMgr* Given() noexcept
    {
        ++references;
        return this;
    }
} manager;

HRESULT WINAPI CreateManager(const CLSID&, IUnknown*, DWORD, const IID&, void** object) noexcept
{
    *object = manager.Given();
    return S_OK;
}

HRESULT WINAPI FreeValues(ULONG count, PROPVARIANT values[])
{
    texts -= static_cast<int>(std::count_if(values, values + count, [](const PROPVARIANT& value) {
        return value.vt == VT_BSTR;
    }));
    return ::FreePropVariantArray(count, values);
}

} // namespace

WiaCamera::WiaCamera()
    : create("CoCreateInstance", CreateManager), freeValues("FreePropVariantArray", FreeValues)
{
    references = texts = 0;
}

IWiaEventCallback* WiaCamera::Callback() noexcept
{
    return callback;
}

void WiaCamera::ShowReferences()
{
    if (references != 0) {
        Journal::AddNumber(L"LEFT BEHIND references", references);
        references = 0;
    }
    if (texts != 0) {
        Journal::AddNumber(L"LEFT BEHIND texts of properties", texts);
        texts = 0;
    }
}

} // namespace kestraboot::tests
