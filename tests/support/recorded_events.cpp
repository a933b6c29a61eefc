#include "tests/support/recorded_events.h"

#include "kestraboot/device_connect.h"
#include "service/dispatch.h"

namespace kestraboot::tests
{

RecordedEvents::RecordedEvents()
{
    static const bool lockMade = [] {
        InitializeDispatch();
        return true;
    }();
    static_cast<void>(lockMade);
    active = this;
    RegisterDeviceConnectCallback(Record);
}

RecordedEvents::~RecordedEvents()
{
    RegisterDeviceConnectCallback(nullptr);
    active = nullptr;
}

void RecordedEvents::Record(std::wstring& kind, std::wstring& deviceId)
{
    active->events.emplace_back(kind, deviceId);
}

} // namespace kestraboot::tests
