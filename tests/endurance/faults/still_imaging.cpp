#include "tests/endurance/faults/still_imaging.h"

#include "samples/simulators/imaging/unanswered_still_image.h"
#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/journal.h"
#include "tests/endurance/faults/wia_camera.h"
#include "trackers/still_image/twain.h"

#include <cstring>
#include <cwchar>
#include <iterator>

namespace kestraboot::tests
{
namespace
{

const HMODULE kSti = reinterpret_cast<HMODULE>(std::uintptr_t{0x1'0000});
const HMODULE kTwain = reinterpret_cast<HMODULE>(std::uintptr_t{0x2'0000});
constexpr twain::TW_UINT16 kEndOfList = 7; // TWRC_ENDOFLIST
constexpr DWORD kCameraType = 2U << 16;

bool cameraIsIn = false;
int twainLoads = 0;
int deviceLists = 0;
bool twainIsOpen = false;

class StillImage final : public simulators::UnansweredStillImage
{
public:
    IStillImageW* Itself() noexcept { return this; } // its only reference is never given back
    HRESULT STDMETHODCALLTYPE GetDeviceList(DWORD, DWORD, DWORD* count, void** buffer) override
    {
        *count = 0;
        *buffer = nullptr;
        if (const auto failure = FailureNow("IStillImage::GetDeviceList")) {
            return static_cast<HRESULT>(*failure);
        }
        *count = cameraIsIn ? 1 : 0;
        auto* const listed =
            static_cast<STI_DEVICE_INFORMATIONW*>(::LocalAlloc(LPTR, sizeof(STI_DEVICE_INFORMATIONW)));
        listed->dwSize = sizeof *listed;
        listed->DeviceType = kCameraType;
        std::wcscpy(listed->szDeviceInternalName, kCamera);
        *buffer = listed;
        ++deviceLists;
        return S_OK;
    }
} stillImage;

HRESULT WINAPI CreateStillImage(HINSTANCE, DWORD, IStillImageW** created, IUnknown*) noexcept
{
    *created = nullptr;
    if (const auto failure = FailureNow("StiCreateInstance")) {
        return static_cast<HRESULT>(*failure);
    }
    *created = stillImage.Itself();
    return S_OK;
}

const char* NameOf(twain::TW_UINT16 message) noexcept
{
    switch (message) {
    case twain::MSG_OPENDSM:
        return "DSM_Entry.MSG_OPENDSM";
    case twain::MSG_CLOSEDSM:
        return "DSM_Entry.MSG_CLOSEDSM";
    case twain::MSG_GETFIRST:
        return "DSM_Entry.MSG_GETFIRST";
    default:
        return "DSM_Entry.MSG_GETNEXT";
    }
}

twain::TW_UINT16 WINAPI AskTwain(twain::TW_IDENTITY*, twain::TW_IDENTITY*, twain::TW_UINT32,
                                 twain::TW_UINT16 type, twain::TW_UINT16 message, void* data) noexcept
{
    using namespace twain;
    if (const auto failure = FailureNow(NameOf(message))) {
        return static_cast<TW_UINT16>(*failure);
    }
    if (type == DAT_PARENT) {
        const bool isWindow = ::IsWindow(*static_cast<HWND*>(data)) != FALSE;
        twainIsOpen = message == MSG_OPENDSM && isWindow;
        return isWindow ? TWRC_SUCCESS : TWRC_FAILURE;
    }
    static int next = 0;
    next = message == MSG_GETFIRST ? 0 : next + 1;
    constexpr const char* kSources[] = {"WIA-Bridge", "Fine Scan with a long name"};
    if (next >= static_cast<int>(std::size(kSources))) {
        return kEndOfList;
    }
    std::strcpy(static_cast<TW_IDENTITY*>(data)->ProductName, kSources[next]);
    return TWRC_SUCCESS;
}

HMODULE WINAPI Load(const wchar_t* name)
{
    if (std::wcscmp(name, L"sti.dll") == 0) {
        return kSti;
    }
    if (std::wcscmp(name, L"twain_32.dll") == 0) {
        ++twainLoads;
        return kTwain;
    }
    return ::LoadLibraryW(name);
}

FARPROC WINAPI Find(HMODULE module, const char* name)
{
    if (module == kSti) {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(CreateStillImage));
    }
    if (module == kTwain) {
        return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(AskTwain));
    }
    return ::GetProcAddress(module, name);
}

BOOL WINAPI Free(HMODULE module)
{
    if (module == kTwain) {
        --twainLoads;
        return TRUE;
    }
    return ::FreeLibrary(module);
}

HLOCAL WINAPI FreeLocal(HLOCAL memory) noexcept
{
    --deviceLists;
    return ::LocalFree(memory);
}

} // namespace

StillImaging::StillImaging()
    : load("LoadLibraryW", Load), find("GetProcAddress", Find), free("FreeLibrary", Free),
      freeLocal("LocalFree", FreeLocal)
{
    twainLoads = deviceLists = 0;
}

void StillImaging::PlugCamera(bool isIn) noexcept
{
    cameraIsIn = isIn;
}

void StillImaging::ShowReferences()
{
    const struct {
        const wchar_t* what;
        int* left;
    } counts[] = {{L"LEFT BEHIND TWAIN loads", &twainLoads},
                  {L"LEFT BEHIND device lists", &deviceLists}};
    for (const auto& count : counts) {
        if (*count.left != 0) {
            Journal::AddNumber(count.what, *count.left);
            *count.left = 0;
        }
    }
    if (twainIsOpen) {
        Journal::Add(L"LEFT BEHIND TWAIN open");
        twainIsOpen = false;
    }
}

} // namespace kestraboot::tests
