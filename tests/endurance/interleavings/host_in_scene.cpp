#include "tests/endurance/interleavings/host_in_scene.h"

#include "kestraboot/device_connect.h"
#include "service/dispatch.h"

#include <algorithm>
#include <stdexcept>

namespace kestraboot::interleavings
{
namespace
{

HostInScene* current = nullptr;

} // namespace

HostInScene::HostInScene()
{
    current = this;
    RegisterDeviceConnectCallback(A);
}

HostInScene::~HostInScene()
{
    RegisterDeviceConnectCallback(nullptr);
}

void HostInScene::A(std::wstring&, std::wstring& deviceId)
{
    current->Told('A', deviceId);
    if (current->aDoes == Does::Throws) {
        throw std::runtime_error("an exception of the host");
    }
    if (current->aDoes == Does::RegistersB) {
        current->RegisterB();
    }
}

void HostInScene::B(std::wstring&, std::wstring& deviceId)
{
    current->Told('B', deviceId);
}

void HostInScene::RegisterB()
{
    RegisterDeviceConnectCallback(B);
    bIsRegistered = true;
}

void HostInScene::Told(char callback, const std::wstring& device)
{
    if (inCallback) {
        Scheduler::Running()->Fail("the host gets two reports at once");
    }
    inCallback = true;
    Scheduler::Running()->Point(std::string("reports ") + Narrow(device) + " to " + callback);
    inCallback = false;
    told.emplace_back(callback, device);
}

void HostInScene::Report(const std::wstring& device)
{
    const bool toB = bIsRegistered;
    std::wstring kind = L"volume";
    std::wstring deviceId = device;
    NotifyDeviceConnect(kind, deviceId);
    if (toB && std::ranges::count(told, std::pair('A', device)) != 0) {
        Scheduler::Running()->Fail("a report goes to the callback that was replaced before");
    }
}

std::string HostInScene::Check(const std::vector<std::wstring>& reported) const
{
    for (const std::wstring& device : reported) {
        const auto times = std::ranges::count_if(told, [&](const auto& one) {
            return one.second == device;
        });
        if (times != 1) {
            return "the host gets " + std::to_string(times) + " reports of " + Narrow(device);
        }
    }
    return told.size() == reported.size() ? ""
                                          : "the host gets a report of a device that nobody reported";
}

} // namespace kestraboot::interleavings
