#include "tests/endurance/fuzz/steered_still_imaging.h"

#include "samples/simulators/imaging/unanswered_still_image.h"
#include "trackers/still_image/twain.h"

#include <cstring>

namespace kestraboot::fuzz
{
namespace
{

const auto kStillImaging = reinterpret_cast<HMODULE>(std::uintptr_t{0x571});
const auto kTwain = reinterpret_cast<HMODULE>(std::uintptr_t{0x7A1});
const auto kWindow = reinterpret_cast<HWND>(std::uintptr_t{0x111D});

class StillImage final : public simulators::UnansweredStillImage
{
public:
    static IStillImageW* Only()
    {
        static StillImage only;
        return &only;
    }
    HRESULT STDMETHODCALLTYPE Initialize(HINSTANCE, DWORD) override
    {
        return SteeredStillImaging::Current()->Initialize();
    }
    HRESULT STDMETHODCALLTYPE GetDeviceList(DWORD, DWORD, DWORD* count, void** buffer) override
    {
        return SteeredStillImaging::Current()->GetDeviceList(count, buffer);
    }
};

HRESULT WINAPI CreateStillImage(HINSTANCE, DWORD, IStillImageW** created, IUnknown*)
{
    return SteeredStillImaging::Current()->Create(created);
}

twain::TW_UINT16 WINAPI TwainEntry(twain::TW_IDENTITY*, twain::TW_IDENTITY*, twain::TW_UINT32,
                                   twain::TW_UINT16, twain::TW_UINT16 message, void* data)
{
    return SteeredStillImaging::Current()->AskTwain(message, data);
}

template <typename Function>
FARPROC Address(Function* function)
{
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(function));
}

} // namespace

SteeredStillImaging::SteeredStillImaging()
    : load([this](const wchar_t* name) -> HMODULE {
          if (std::wcscmp(name, L"sti.dll") == 0) {
              return world->loads ? kStillImaging : nullptr;
          }
          if (std::wcscmp(name, L"twain_32.dll") != 0) {
              return load.CallOriginal(name);
          }
          libraries += world->twain.installed ? 1 : 0;
          return world->twain.installed ? kTwain : nullptr;
      }),
      address([this](HMODULE module, const char* name) -> FARPROC {
          if (module == kStillImaging) {
              return world->entry && std::strcmp(name, "StiCreateInstance") == 0
                         ? Address(&CreateStillImage)
                         : nullptr;
          }
          if (module == kTwain) {
              const bool first = reinterpret_cast<std::uintptr_t>(name) == 1;
              return world->twain.hasEntry && first ? Address(&TwainEntry) : nullptr;
          }
          return address.CallOriginal(module, name);
      }),
      unload([this](HMODULE module) -> BOOL {
          if (module != kTwain) {
              return unload.CallOriginal(module);
          }
          --libraries;
          return TRUE;
      }),
      freeList([this](HLOCAL memory) -> HLOCAL {
          lists.erase(memory);
          return freeList.CallOriginal(memory);
      }),
      createWindow([this](DWORD, const wchar_t*, const wchar_t*, DWORD, int, int, int, int, HWND, HMENU,
                          HINSTANCE, void*) -> HWND {
          ++windows;
          return kWindow;
      }),
      destroyWindow([this](HWND) -> BOOL {
          --windows;
          return TRUE;
      })
{
    current = this;
}

SteeredStillImaging::~SteeredStillImaging()
{
    current = nullptr;
}

void SteeredStillImaging::Become(const StillWorld& wanted)
{
    world = &wanted;
    lists.clear();
    windows = libraries = sessions = 0;
}

HRESULT SteeredStillImaging::Create(IStillImageW** created) const
{
    *created = world->createsNothing ? nullptr : StillImage::Only();
    return world->create;
}

HRESULT SteeredStillImaging::GetDeviceList(DWORD* count, void** buffer)
{
    *count = static_cast<DWORD>(listing->devices.size()) + listing->tooMany;
    if (listing->noBuffer) {
        *buffer = nullptr;
        return listing->result;
    }
    const std::size_t size = listing->devices.size() * sizeof(STI_DEVICE_INFORMATIONW);
    auto* device = static_cast<STI_DEVICE_INFORMATIONW*>(::LocalAlloc(LPTR, size));
    lists.insert(device);
    *buffer = device;
    for (const StillDevice& listed : listing->devices) {
        device->dwSize = sizeof *device;
        device->DeviceType = listed.type;
        device->DeviceCapabilities.dwGeneric = listed.capabilities;
        listed.name.copy(device->szDeviceInternalName, STI_MAX_INTERNAL_NAME_LENGTH);
        ++device;
    }
    return listing->result;
}

unsigned short SteeredStillImaging::AskTwain(unsigned short message, void* data)
{
    switch (message) {
    case twain::MSG_OPENDSM:
        ++sessions;
        return world->twain.open;
    case twain::MSG_CLOSEDSM:
        --sessions;
        return 0;
    case twain::MSG_GETFIRST:
        nextSource = 0;
        break;
    default:
        break;
    }
    if (nextSource == world->twain.sources.size()) {
        return world->twain.end;
    }
    auto& source = *static_cast<twain::TW_IDENTITY*>(data);
    const std::string& name = world->twain.sources[nextSource++];
    std::memset(&source, 'z', sizeof source);
    std::memset(source.ProductName, 0, sizeof source.ProductName);
    name.copy(source.ProductName, sizeof source.ProductName);
    return 0;
}

} // namespace kestraboot::fuzz
