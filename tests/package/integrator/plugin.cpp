// A small device plugin of a maker. It reports one camera as soon as it has the callback.
#include <kestraboot/mox_plugin.h>

#include <cwchar>

namespace mox = kestraboot::mox;

namespace
{

/// There as long as the DLL, so nothing counts the references to it.
template <class Interface>
class Lasting : public Interface
{
public:
    std::uint32_t AddReference() override { return 1; }
    std::uint32_t Release() override { return 1; }
};

class Source final : public Lasting<mox::ISourceManager>
{
public:
    bool Query(mox::InterfaceNumber number, void** object) override
    {
        *object =
            number == mox::kSourceManagerNumber ? static_cast<mox::ISourceManager*>(this) : nullptr;
        return *object != nullptr;
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

class Descriptor final : public Lasting<mox::IPluginDescriptor>
{
public:
    bool Query(mox::InterfaceNumber number, void** object) override
    {
        if (number == mox::kPluginDescriptorNumber) {
            *object = static_cast<mox::IPluginDescriptor*>(this);
            return true;
        }
        return source.Query(number, object);
    }
    mox::Status GetIdentifier(mox::Identifier* identifier) override
    {
        *identifier = {0x1B6F520E, 0x379A, 0x0D4C, {0x21, 0x8E, 0xB4, 0x53, 0xD9, 0x07, 0xC8, 0x6A}};
        return mox::kSuccess;
    }
    mox::Status GetValue(std::uint32_t* value) override
    {
        *value = 7;
        return mox::kSuccess;
    }
    mox::Status GetName(wchar_t* name, std::uint32_t /*capacity: at least 260*/) override
    {
        std::wcscpy(name, L"The maker's cameras");
        return mox::kSuccess;
    }
    mox::Status ShutDown() override { return mox::kSuccess; }
    mox::Status SetListEntry(const mox::PluginDescriptor*) override { return mox::kSuccess; }

private:
    Source source;
};

Descriptor descriptor;

} // namespace

mox::Status FxPluginMain(mox::IFxBase** object)
{
    *object = &descriptor;
    return mox::kSuccess;
}
