#include "tests/endurance/faults/imaging.h"

#include "tests/endurance/faults/journal.h"
#include "tests/support/wia_objects.h"
#include "trackers/still_image/twain.h"

#include <cstring>
#include <cwchar>
#include <iterator>
#include <sti.h>

// The header of this toolchain leaves three operations without a body.
HRESULT IStillImageW::GetDeviceValue(LPWSTR, LPWSTR, LPDWORD, LPBYTE, LPDWORD)
{
    return E_NOTIMPL;
}
HRESULT IStillImageW::SetDeviceValue(LPWSTR, LPWSTR, DWORD, LPBYTE, DWORD)
{
    return E_NOTIMPL;
}
HRESULT IStillImageW::LaunchApplicationForDevice(LPWSTR, LPWSTR, LPSTINOTIFY)
{
    return E_NOTIMPL;
}
HRESULT IStillImageW::SetupDeviceParameters(PSTI_DEVICE_INFORMATIONW)
{
    return E_NOTIMPL;
}

namespace kestraboot::tests
{
namespace
{

const HMODULE kSti = reinterpret_cast<HMODULE>(std::uintptr_t{0x1'0000});
const HMODULE kTwain = reinterpret_cast<HMODULE>(std::uintptr_t{0x2'0000});
constexpr twain::TW_UINT16 kEndOfList = 7; // TWRC_ENDOFLIST
constexpr DWORD kCameraType = 2U << 16;

bool cameraIsIn = false;
int references = 0; ///< to all objects here
int twainLoads = 0;
int deviceLists = 0;
bool twainIsOpen = false;
bool listEnded = false;
IWiaEventCallback* callback = nullptr;

/// An object that is never freed and counts what is held of all of them.
template <typename Base>
class Static : public Base
{
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) noexcept override
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() noexcept override { return static_cast<ULONG>(++references); }
    ULONG STDMETHODCALLTYPE Release() noexcept override { return static_cast<ULONG>(--references); }
};

class PlainUnknown : protected IUnknown
{
public:
    virtual ~PlainUnknown() = default;
};

class Registration final : public Static<PlainUnknown>
{
public:
    ULONG STDMETHODCALLTYPE Release() noexcept override
    {
        callback->Release();
        callback = nullptr;
        return static_cast<ULONG>(--references);
    }
    IUnknown* Given() noexcept
    {
        ++references;
        return this;
    }
} registration;

class Storage final : public Static<UnansweredPropertyStorage>
{
public:
    HRESULT STDMETHODCALLTYPE ReadMultiple(ULONG count, const PROPSPEC wanted[],
                                           PROPVARIANT values[]) noexcept override
    {
        for (ULONG i = 0; i < count; ++i) {
            const bool isId = wanted[i].propid == WIA_DIP_DEV_ID;
            values[i].vt = isId ? VT_BSTR : VT_I4;
            if (isId) {
                values[i].bstrVal = ::SysAllocString(kCamera);
            } else {
                values[i].lVal = kCameraType;
            }
        }
        return S_OK;
    }
    IWiaPropertyStorage* Given() noexcept
    {
        ++references;
        return this;
    }
} storage;

class Enumerator final : public Static<UnansweredDeviceEnumerator>
{
public:
    HRESULT STDMETHODCALLTYPE Reset() noexcept override
    {
        listEnded = false;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Next(ULONG, IWiaPropertyStorage** next, ULONG* fetched) noexcept override
    {
        *fetched = listEnded ? 0 : 1;
        *next = listEnded ? nullptr : storage.Given();
        const HRESULT result = listEnded ? S_FALSE : S_OK;
        listEnded = true;
        return result;
    }
    IEnumWIA_DEV_INFO* Given() noexcept
    {
        ++references;
        return this;
    }
} enumerator;

class Manager final : public Static<UnansweredDeviceManager>
{
public:
    HRESULT STDMETHODCALLTYPE EnumDeviceInfo(LONG, IEnumWIA_DEV_INFO** created) noexcept override
    {
        *created = enumerator.Given();
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE RegisterEventCallbackInterface(LONG, BSTR, const GUID*,
                                                             IWiaEventCallback* given,
                                                             IUnknown** registered) noexcept override
    {
        callback = given;
        callback->AddRef();
        *registered = registration.Given();
        return S_OK;
    }
    IWiaDevMgr* Given() noexcept
    {
        ++references;
        return this;
    }
} manager;

class StillImage final : private IStillImageW
{
public:
    IStillImageW* Itself() noexcept { return this; } // its one reference is never given back
    // clang-format off
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; }
    ULONG STDMETHODCALLTYPE Release() override { return 1; }
    HRESULT STDMETHODCALLTYPE Initialize(HINSTANCE, DWORD) override { return S_OK; }
    HRESULT STDMETHODCALLTYPE GetDeviceInfo(LPWSTR, void**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CreateDevice(LPWSTR, DWORD, PSTIDEVICE*, IUnknown*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSTILaunchInformation(LPWSTR, DWORD*, LPWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RegisterLaunchApplication(LPWSTR, LPWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UnregisterLaunchApplication(LPWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE EnableHwNotifications(LPCWSTR, WINBOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetHwNotificationState(LPCWSTR, WINBOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE RefreshDeviceBus(LPCWSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE WriteToErrorLog(DWORD, LPCWSTR) override { return E_NOTIMPL; }
    // clang-format on
    HRESULT STDMETHODCALLTYPE GetDeviceList(DWORD, DWORD, DWORD* count, void** buffer) override
    {
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
    *created = stillImage.Itself();
    return S_OK;
}

twain::TW_UINT16 WINAPI AskTwain(twain::TW_IDENTITY*, twain::TW_IDENTITY*, twain::TW_UINT32,
                                 twain::TW_UINT16 type, twain::TW_UINT16 message, void* data) noexcept
{
    using namespace twain;
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

HRESULT WINAPI CreateManager(const CLSID&, IUnknown*, DWORD, const IID&, void** object) noexcept
{
    *object = manager.Given();
    return S_OK;
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

template <typename Function>
void* Address(Function* function)
{
    return reinterpret_cast<void*>(function);
}

FARPROC WINAPI Find(HMODULE module, const char* name)
{
    if (module == kSti) {
        return reinterpret_cast<FARPROC>(Address(CreateStillImage));
    }
    if (module == kTwain) {
        return reinterpret_cast<FARPROC>(Address(AskTwain));
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

Imaging::Imaging()
    : create("CoCreateInstance", Address(CreateManager)), load("LoadLibraryW", Address(Load)),
      find("GetProcAddress", Address(Find)), free("FreeLibrary", Address(Free)),
      freeLocal("LocalFree", Address(FreeLocal))
{
    references = twainLoads = deviceLists = 0;
}

Imaging::~Imaging() = default;

void Imaging::PlugCamera(bool isIn) noexcept
{
    cameraIsIn = isIn;
}

IWiaEventCallback* Imaging::Callback() noexcept
{
    return callback;
}

void Imaging::ShowReferences()
{
    const struct {
        const wchar_t* what;
        int* left;
    } counts[] = {{L"LEFT references", &references},
                  {L"LEFT TWAIN loads", &twainLoads},
                  {L"LEFT device lists", &deviceLists}};
    for (const auto& count : counts) {
        if (*count.left != 0) {
            Journal::AddNumber(count.what, *count.left);
            *count.left = 0;
        }
    }
    if (twainIsOpen) {
        Journal::Add(L"LEFT TWAIN open");
        twainIsOpen = false;
    }
}

} // namespace kestraboot::tests
