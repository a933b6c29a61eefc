#pragma once

#include "trackers/wia/wia_identifiers.h"

#include <windows.h>

#include <atomic>

namespace kestraboot::simulators
{

/// The IUnknown of an object with one interface beside it: begins with one reference, deletes itself
/// with the last, and counts itself among the live ones. `Base` answers the interface's operations.
template <typename Interface, typename Base>
class Counted : public Base
{
public:
    Counted(const IID& own, std::atomic<long>& counter) : ownInterface(own), liveObjects(counter)
    {
        ++liveObjects;
    }
    Counted(const Counted&) = delete;
    Counted& operator=(const Counted&) = delete;

    Interface* Reference() noexcept { return this; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID interfaceId, void** object) override
    {
        const bool known = interfaceId == kIidUnknown || interfaceId == ownInterface;
        *object = known ? static_cast<Interface*>(this) : nullptr;
        if (known) {
            AddRef();
        }
        return known ? S_OK : E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references); }
    ULONG STDMETHODCALLTYPE Release() override
    {
        const long left = --references;
        if (left == 0) {
            delete this;
        }
        return static_cast<ULONG>(left);
    }

protected:
    ~Counted() override { --liveObjects; }

private:
    const IID& ownInterface;
    std::atomic<long>& liveObjects;
    std::atomic<long> references = 1;
};

} // namespace kestraboot::simulators
