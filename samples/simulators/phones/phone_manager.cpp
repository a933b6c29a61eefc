// nokiamanager.mox: a phone manager whose phones come from phone.exe. Built on the plugin kit alone.
#include "kestraboot/mox_plugin.h"
#include "phone_server.h"

#include <algorithm>
#include <atomic>
#include <cwchar>
#include <memory>
#include <string>

namespace mox = kestraboot::mox;

namespace
{

constexpr mox::Identifier kPhoneManager = {
    0xEAD73274, 0x3BC9, 0x4878, {0xB3, 0x44, 0x6B, 0xE7, 0x4A, 0x12, 0xB2, 0x7A}};

/// The part of every object that counts its references.
template <typename Interface>
class Counted : public Interface
{
public:
    std::uint32_t AddReference() override { return ++references; }
    std::uint32_t Release() override
    {
        const std::uint32_t remaining = --references;
        if (remaining == 0) {
            delete this;
        }
        return remaining;
    }

protected:
    virtual ~Counted() = default; // behind the operations of the interface

private:
    std::atomic<std::uint32_t> references = 1;
};

class PhoneSource final : public Counted<mox::ISourceManager>
{
public:
    bool Query(mox::InterfaceNumber number, void** object) override
    {
        *object =
            number == mox::kSourceManagerNumber ? static_cast<mox::ISourceManager*>(this) : nullptr;
        if (*object != nullptr) {
            AddReference();
        }
        return *object != nullptr;
    }

    mox::Status GetCategory(std::uint32_t* category) override
    {
        *category = mox::kDeviceSourceCategory;
        return mox::kSuccess;
    }

    mox::Status RegisterCallback(mox::ICallbackInterface* callback) override
    {
        if (callback == nullptr || server) {
            return mox::kBadArgument;
        }
        try {
            server = std::make_unique<PhoneServer>([callback](const PhoneNews& news) {
                return Tell(*callback, news);
            });
        } catch (const std::exception&) {
            return mox::kFailure;
        }
        callback->AddReference();
        return mox::kSuccess;
    }

    mox::Status UnregisterCallback(mox::ICallbackInterface* callback) override
    {
        if (!server) {
            return mox::kBadArgument;
        }
        server.reset();
        callback->Release();
        return mox::kSuccess;
    }

private:
    static mox::Status Tell(mox::ICallbackInterface& callback, const PhoneNews& news)
    {
        mox::DeviceRecord device = {};
        device.eventCode = mox::kDeviceArrived;
        device.size = mox::kDeviceRecordSize;
        device.deviceKind = mox::kKindMobile;
        device.mobileReady = news.mobileReady;
        std::copy(std::begin(news.deviceId), std::end(news.deviceId), device.deviceId);
        return callback.Notify(0, &device);
    }

    std::unique_ptr<PhoneServer> server; // while a callback is registered
};

class PhoneManager final : public Counted<mox::IPluginDescriptor>
{
public:
    bool Query(mox::InterfaceNumber number, void** object) override
    {
        *object = nullptr;
        if (number == mox::kPluginDescriptorNumber) {
            AddReference();
            *object = static_cast<mox::IPluginDescriptor*>(this);
        } else if (number == mox::kSourceManagerNumber) {
            *object = static_cast<mox::ISourceManager*>(new PhoneSource);
        }
        return *object != nullptr;
    }

    mox::Status GetName(wchar_t* name, std::uint32_t capacity) override
    {
        name[std::wstring(L"Phones").copy(name, capacity - 1)] = L'\0';
        return mox::kSuccess;
    }
    mox::Status GetValue(std::uint32_t* value) override
    {
        *value = 1;
        return mox::kSuccess;
    }
    mox::Status GetIdentifier(mox::Identifier* identifier) override
    {
        *identifier = kPhoneManager;
        return mox::kSuccess;
    }
    mox::Status SetListEntry(const mox::PluginDescriptor*) override { return mox::kSuccess; }
    mox::Status ShutDown() override { return mox::kSuccess; }
};

} // namespace

mox::Status FxPluginMain(mox::IFxBase** object)
{
    *object = new PhoneManager;
    return mox::kSuccess;
}
