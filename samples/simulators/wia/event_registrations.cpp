#include "event_registrations.h"

#include "counted.h"
#include "trackers/wia/wia_identifiers.h"

#include <atomic>
#include <list>
#include <mutex>
#include <vector>

namespace kestraboot::simulators
{
namespace
{

std::mutex registrationsLock;
std::list<IWiaEventCallback*> registrations; ///< one reference each

class PlainUnknown : protected IUnknown
{
protected:
    virtual ~PlainUnknown() = default;
};

std::atomic<long> registrationObjects = 0;

/// One registration, which ends with the last reference.
class Registration final : public Counted<IUnknown, PlainUnknown>
{
public:
    explicit Registration(IWiaEventCallback* registered)
        : Counted(kIidUnknown, registrationObjects), callback(registered)
    {
        callback->AddRef();
        const std::lock_guard guard(registrationsLock);
        registrations.push_back(callback);
    }

private:
    ~Registration() override
    {
        {
            const std::lock_guard guard(registrationsLock);
            registrations.remove(callback);
        }
        callback->Release();
    }

    IWiaEventCallback* callback;
};

} // namespace

IUnknown* RegisterForConnect(IWiaEventCallback* callback)
{
    return (new Registration(callback))->Reference();
}

void FireConnectEvent(const std::wstring& deviceId)
{
    std::vector<IWiaEventCallback*> called;
    {
        const std::lock_guard guard(registrationsLock);
        called.assign(registrations.begin(), registrations.end());
        for (IWiaEventCallback* const callback : called) {
            callback->AddRef();
        }
    }
    const BSTR id = ::SysAllocString(deviceId.c_str());
    const BSTR description = ::SysAllocString(L"a device");
    for (IWiaEventCallback* const callback : called) {
        ULONG eventType = WIA_NOTIFICATION_EVENT;
        callback->ImageEventCallback(&kWiaEventDeviceConnected, description, id, description, 0,
                                     description, &eventType, 0);
        callback->Release();
    }
    ::SysFreeString(description);
    ::SysFreeString(id);
}

long LiveRegistrations() noexcept
{
    return registrationObjects;
}

} // namespace kestraboot::simulators
