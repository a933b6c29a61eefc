#include "tests/trackers/mox/device_reports.h"

#include "kestraboot/device_connect.h"
#include "service/dispatch.h"

#include <mutex>

namespace kestraboot::tests
{
namespace
{

DeviceReports* current = nullptr;
std::mutex mutex;
std::vector<DeviceReport> reports;

void OnDevice(std::wstring& kind, std::wstring& deviceId)
{
    const DeviceReport report(kind, deviceId);
    {
        const std::lock_guard lock(mutex);
        reports.push_back(report);
    }
    if (current->during) {
        current->during(report);
    }
}

} // namespace

DeviceReports::DeviceReports()
{
    static const bool initialised = [] {
        InitializeDispatch();
        return true;
    }();
    static_cast<void>(initialised);
    current = this;
    reports.clear();
    RegisterDeviceConnectCallback(OnDevice);
}

DeviceReports::~DeviceReports()
{
    RegisterDeviceConnectCallback(nullptr);
}

std::vector<DeviceReport> DeviceReports::All() const
{
    const std::lock_guard lock(mutex);
    return reports;
}

} // namespace kestraboot::tests
