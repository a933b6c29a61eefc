#pragma once

#include <windows.h>

#include <unknwn.h>

namespace kestraboot::simulators
{

/// The object through which COM gets the objects of a class; it lives as long as its module.
class ClassFactory final : private IClassFactory
{
public:
    using Create = HRESULT (*)(REFIID interfaceId, void** object);

    explicit ClassFactory(Create creates) noexcept : create(creates) {}
    ClassFactory(const ClassFactory&) = delete;
    ClassFactory& operator=(const ClassFactory&) = delete;

    IClassFactory* Interface() noexcept { return this; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) override
    {
        const bool known = interfaceId == IID_IUnknown || interfaceId == IID_IClassFactory;
        *object = known ? static_cast<IClassFactory*>(this) : nullptr;
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID interfaceId, void** object) override
    {
        *object = nullptr;
        return outer != nullptr ? CLASS_E_NOAGGREGATION : create(interfaceId, object);
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL) override { return S_OK; }

private:
    Create create;
};

} // namespace kestraboot::simulators
