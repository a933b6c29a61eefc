#include "sample_source.h"

#include <cwchar>

namespace mox = kestraboot::mox;

SampleSource::~SampleSource()
{
    StopWatching();
}

// The host asks the manager for interface 13 once more before it reads the category.
bool SampleSource::Query(mox::InterfaceNumber number, void** object)
{
    *object = nullptr;
    if (number != mox::kSourceManagerNumber) {
        return false;
    }
    AddReference(); // every object that is handed out comes with a reference
    *object = static_cast<mox::ISourceManager*>(this);
    return true;
}

std::uint32_t SampleSource::AddReference()
{
    return static_cast<std::uint32_t>(::InterlockedIncrement(&references));
}

std::uint32_t SampleSource::Release()
{
    const LONG remaining = ::InterlockedDecrement(&references);
    if (remaining == 0) {
        delete this;
    }
    return static_cast<std::uint32_t>(remaining);
}

// A source with any other category is not tracked.
mox::Status SampleSource::GetCategory(std::uint32_t* category)
{
    *category = mox::kDeviceSourceCategory;
    return mox::kSuccess;
}

// From here on the plugin reports devices, from a thread of its own: it must not keep the host waiting.
mox::Status SampleSource::RegisterCallback(mox::ICallbackInterface* given)
{
    if (given == nullptr || thread != nullptr) {
        return mox::kBadArgument;
    }
    given->AddReference(); // it is only lent for this call: the reference is what keeps it alive
    callback = given;
    deviceArrived = ::CreateEventW(nullptr, FALSE, FALSE, L"KestrabootSampleDevice");
    ending = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (deviceArrived != nullptr && ending != nullptr) {
        thread = ::CreateThread(nullptr, 0, WatchThread, this, 0, nullptr);
    }
    if (thread == nullptr) {
        StopWatching();
        return mox::kFailure;
    }
    return mox::kSuccess;
}

mox::Status SampleSource::UnregisterCallback(mox::ICallbackInterface* given)
{
    if (given == nullptr || given != callback) {
        return mox::kBadArgument;
    }
    StopWatching(); // no call of the callback begins after this; then its reference is given back
    return mox::kSuccess;
}

DWORD WINAPI SampleSource::WatchThread(LPVOID self)
{
    static_cast<SampleSource*>(self)->Watch();
    return 0;
}

void SampleSource::Watch()
{
    const HANDLE awaited[] = {ending, deviceArrived};
    while (::WaitForMultipleObjects(2, awaited, FALSE, INFINITE) == WAIT_OBJECT_0 + 1) {
        mox::DeviceRecord device = {}; // cleared: what is not filled must be zero
        device.eventCode = mox::kDeviceArrived;
        device.size = mox::kDeviceRecordSize;
        device.deviceKind = mox::kKindCamera;
        std::wcscpy(device.deviceId, L"Sample camera");
        // Returns when the application was started. Nothing can be done about a failure here.
        static_cast<void>(callback->Notify(0, &device));
    }
}

void SampleSource::StopWatching()
{
    if (thread != nullptr) {
        ::SetEvent(ending);
        ::WaitForSingleObject(thread, INFINITE);
    }
    HANDLE* const handles[] = {&thread, &ending, &deviceArrived};
    for (HANDLE* const handle : handles) {
        if (*handle != nullptr) {
            ::CloseHandle(*handle);
            *handle = nullptr;
        }
    }
    if (callback != nullptr) {
        callback->Release();
        callback = nullptr;
    }
}
