#include "device_manager.h"

#include "../common/configuration.h"
#include "counted.h"
#include "device_list.h"
#include "event_registrations.h"
#include "trackers/wia/wia_identifiers.h"
#include "wia_objects.h"

#include <atomic>
#include <vector>

namespace kestraboot::simulators
{
namespace
{

std::atomic<long> managers = 0;

std::vector<Entry> Configuration()
{
    return ReadEntries(L"wia_devices.txt");
}

/// False for a line that names no device.
bool ToDevice(const Entry& entry, DWORD& type)
{
    constexpr DWORD kSubtype = 0x0001;
    if (entry.word == "scanner" || entry.word == "camera" || entry.word == "video") {
        type = (entry.word == "scanner" ? 1U : entry.word == "camera" ? 2U : 3U) << 16 | kSubtype;
        return true;
    }
    if (entry.word[0] >= '0' && entry.word[0] <= '9') {
        type = static_cast<DWORD>(std::stoul(entry.word, nullptr, 0));
        return true;
    }
    return false;
}

std::vector<ListedDevice> Devices(const std::vector<Entry>& entries)
{
    std::vector<ListedDevice> devices;
    for (const Entry& entry : entries) {
        DWORD type = 0;
        if (ToDevice(entry, type)) {
            devices.push_back({entry.rest, type});
        }
    }
    return devices;
}

class Manager final : public Counted<IWiaDevMgr, simulators::UnansweredDeviceManager>
{
public:
    Manager() : Counted(kIidWiaDevMgr, managers) {}

    HRESULT STDMETHODCALLTYPE EnumDeviceInfo(LONG flags, IEnumWIA_DEV_INFO** devices) override
    {
        *devices = nullptr;
        if (flags != WIA_DEVINFO_ENUM_LOCAL) {
            return E_INVALIDARG;
        }
        const std::vector<Entry> entries = Configuration();
        if (Says(entries, "no-list")) {
            return E_FAIL;
        }
        *devices = MakeDeviceList(Devices(entries));
        return S_OK;
    }

    HRESULT STDMETHODCALLTYPE RegisterEventCallbackInterface(LONG, BSTR, const GUID* event,
                                                             IWiaEventCallback* callback,
                                                             IUnknown** registration) override
    {
        *registration = nullptr;
        if (callback == nullptr || *event != kWiaEventDeviceConnected ||
            Says(Configuration(), "refuse-registration")) {
            return E_INVALIDARG;
        }
        *registration = RegisterForConnect(callback);
        return S_OK;
    }
};

} // namespace

HRESULT MakeDeviceManager(REFIID interfaceId, void** object)
{
    IWiaDevMgr* const made = (new Manager)->Reference();
    const HRESULT result = made->QueryInterface(interfaceId, object);
    made->Release();
    return result;
}

long LiveManagers() noexcept
{
    return managers;
}

} // namespace kestraboot::simulators
