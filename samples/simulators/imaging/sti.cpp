// sti.dll: simulates the still-image service.
//
// Put it beside the program (kestraboot.exe) together with a text file "sti_devices.txt"; see
// configuration.h for other places. Each line is one device that still imaging lists:
//   camera NAME | scanner NAME | video NAME | NUMBER NAME     (NUMBER: the whole device type, 0x...)
// NAME is the internal name, such as {6BDD1FC6-810F-11D0-BEC7-08002BE2092F}\0001. To plug a device in or
// out while the program runs, replace the file and run device_change.exe.
// The registry names the TWAIN source of a device, as a driver would write it:
//   HKLM\SYSTEM\CurrentControlSet\Control\Class\NAME\DeviceData, string TwainDS
// Lines that make it fail:
//   refuse-create, refuse-initialize   StiCreateInstance or Initialize fails
//   fail                               GetDeviceList answers E_FAIL
//   every-second                       every other GetDeviceList lists no devices
//   other-success                      GetDeviceList answers S_FALSE with the list
//   no-buffer COUNT                    GetDeviceList reports so many devices and no memory
//   short COUNT                        GetDeviceList reports so many devices, regardless of the memory
// If there is a file "sti_calls.txt" beside it, it receives a line for each call.
#include "../common/configuration.h"
#include "unanswered_still_image.h"

#include <cstring>
#include <string>

namespace
{

using namespace kestraboot::simulators;

std::vector<Entry> ListedDevices()
{
    return ReadEntries(L"sti_devices.txt");
}

void Log(const std::string& line)
{
    AddToLog(L"sti_calls.txt", line);
}

/// False for a line that names no device.
bool ToDevice(const Entry& entry, STI_DEVICE_INFORMATIONW& device)
{
    constexpr DWORD kSubtype = 0x0001;
    device.dwSize = sizeof device;
    if (entry.word == "scanner" || entry.word == "camera" || entry.word == "video") {
        const DWORD type = entry.word == "scanner" ? 1 : entry.word == "camera" ? 2 : 3;
        device.DeviceType = type << 16 | kSubtype;
    } else if (entry.word[0] >= '0' && entry.word[0] <= '9') {
        device.DeviceType = static_cast<DWORD>(std::stoul(entry.word, nullptr, 0));
    } else {
        return false;
    }
    // A name of 128 characters leaves no room for a terminator; what follows it is the capabilities.
    entry.rest.copy(device.szDeviceInternalName, STI_MAX_INTERNAL_NAME_LENGTH);
    device.DeviceCapabilities.dwGeneric = 0x0042'0041; // as text "AB"
    return true;
}

class StillImage final : public kestraboot::simulators::UnansweredStillImage
{
public:
    static IStillImageW* Only()
    {
        static StillImage only;
        return &only;
    }

    ULONG STDMETHODCALLTYPE Release() override
    {
        Log("release");
        return 1;
    }

    HRESULT STDMETHODCALLTYPE Initialize(HINSTANCE instance, DWORD version) override
    {
        Log("initialize instance=" + std::to_string(instance == ::GetModuleHandleW(nullptr)) +
            " version=" + std::to_string(version));
        return Says(ListedDevices(), "refuse-initialize") ? STIERR_OLD_VERSION : S_OK;
    }

    HRESULT STDMETHODCALLTYPE GetDeviceList(DWORD type, DWORD flags, DWORD* count,
                                            void** buffer) override
    {
        Log("list type=" + std::to_string(type) + " flags=" + std::to_string(flags));
        const std::vector<Entry> entries = ListedDevices();
        if (Says(entries, "fail")) {
            return E_FAIL;
        }
        auto* const devices = static_cast<STI_DEVICE_INFORMATIONW*>(
            ::LocalAlloc(LPTR, entries.size() * sizeof(STI_DEVICE_INFORMATIONW)));
        *count = 0;
        *buffer = devices;
        static bool isSecond = false;
        isSecond = !isSecond;
        if (Says(entries, "every-second") && isSecond) {
            return S_OK;
        }
        for (const Entry& entry : entries) {
            if (ToDevice(entry, devices[*count])) {
                ++*count;
            } else if (entry.word == "no-buffer" || entry.word == "short") {
                *count = static_cast<DWORD>(std::stoul(entry.rest));
                if (entry.word == "no-buffer") {
                    ::LocalFree(devices);
                    *buffer = nullptr;
                }
                return S_OK;
            }
        }
        return Says(entries, "other-success") ? S_FALSE : S_OK;
    }
};

} // namespace

extern "C" HRESULT WINAPI SimulatorCreateInstance(HINSTANCE, DWORD, IStillImageW**, IUnknown*);

// Exported as StiCreateInstance.
HRESULT WINAPI SimulatorCreateInstance(HINSTANCE instance, DWORD version, IStillImageW** created,
                                       IUnknown* outer)
{
    Log("create instance=" + std::to_string(instance == ::GetModuleHandleW(nullptr)) +
        " version=" + std::to_string(version) + " outer=" + std::to_string(outer != nullptr));
    *created = StillImage::Only(); // a refusal counts, also with an object
    return Says(ListedDevices(), "refuse-create") ? STIERR_OLD_VERSION : S_OK;
}
