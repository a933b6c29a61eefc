// A small device plugin of a maker. It reports one camera as soon as it has the callback.
#include <kestraboot/mox_plugin.h>

#include <windows.h>

#include <cwchar>
#include <new>

namespace mox = kestraboot::mox;

namespace
{

template <class Interface>
class Counted : public Interface
{
public:
    std::uint32_t AddReference() override
    {
        return static_cast<std::uint32_t>(::InterlockedIncrement(&references));
    }
    std::uint32_t Release() override
    {
        const LONG left = ::InterlockedDecrement(&references);
        if (left == 0) {
            delete this;
        }
        return static_cast<std::uint32_t>(left);
    }

protected:
    virtual ~Counted() = default;

private:
    volatile LONG references = 1;
};

class Source final : public Counted<mox::ISourceManager>
{
public:
    bool Query(mox::InterfaceNumber number, void** object) override
    {
        const bool known = number == mox::kSourceManagerNumber;
        *object = known ? static_cast<mox::ISourceManager*>(this) : nullptr;
        return known && AddReference() != 0;
    }
    mox::Status GetCategory(std::uint32_t* category) override
    {
        *category = mox::kDeviceSourceCategory;
        return mox::kSuccess;
    }
    mox::Status RegisterCallback(mox::ICallbackInterface* callback) override
    {
        mox::DeviceRecord camera = {};
        camera.eventCode = mox::kDeviceArrived;
        camera.size = mox::kDeviceRecordSize;
        camera.deviceKind = mox::kKindCamera;
        std::wcscpy(camera.deviceId, L"The maker's \"own\" camera");
        return callback->Notify(0, &camera);
    }
    mox::Status UnregisterCallback(mox::ICallbackInterface*) override { return mox::kSuccess; }
};

class Descriptor final : public Counted<mox::IPluginDescriptor>
{
public:
    bool Query(mox::InterfaceNumber number, void** object) override
    {
        *object = nullptr;
        if (number == mox::kPluginDescriptorNumber) {
            *object = static_cast<mox::IPluginDescriptor*>(this);
            AddReference();
        } else if (number == mox::kSourceManagerNumber) {
            *object = static_cast<mox::ISourceManager*>(new (std::nothrow) Source);
        }
        return *object != nullptr;
    }
    mox::Status GetName(wchar_t* name, std::uint32_t capacity) override
    {
        std::wcsncpy(name, L"The maker's cameras", capacity - 1);
        name[capacity - 1] = L'\0';
        return mox::kSuccess;
    }
    mox::Status GetValue(std::uint32_t* value) override
    {
        *value = 7;
        return mox::kSuccess;
    }
    mox::Status GetIdentifier(mox::Identifier* identifier) override
    {
        *identifier = {0x1B6F520E, 0x379A, 0x0D4C, {0x21, 0x8E, 0xB4, 0x53, 0xD9, 0x07, 0xC8, 0x6A}};
        return mox::kSuccess;
    }
    mox::Status SetListEntry(const mox::PluginDescriptor*) override { return mox::kSuccess; }
    mox::Status ShutDown() override { return mox::kSuccess; }
};

} // namespace

mox::Status FxPluginMain(mox::IFxBase** object)
{
    *object = new (std::nothrow) Descriptor;
    return *object != nullptr ? mox::kSuccess : mox::kOutOfMemory;
}
