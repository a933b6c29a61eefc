// A plugin that is one object with both interfaces, and has a std::thread as a member. It writes a line
// to the debugger output when the host asks it to end. It is built three times:
//
//   static_thread.mox   the object is static (STATIC_PLUGIN): wrong, its destructor runs in ExitProcess
//   kept_thread.mox     the object is never destroyed
//   divided.mox         the same, and its name comes from plugin_name.dll
#include "kestraboot/mox_plugin.h"
#include "tests/stand_ins/plugins/plugin_name.h"

#include <windows.h>
#include <atomic>
#include <cwchar>
#include <thread>

namespace mox = kestraboot::mox;

namespace
{

class Player final : public mox::IPluginDescriptor, public mox::ISourceManager
{
public:
    bool Query(mox::InterfaceNumber number, void** object) override
    {
        *object = nullptr;
        if (number == mox::kPluginDescriptorNumber) {
            *object = static_cast<mox::IPluginDescriptor*>(this);
        } else if (number == mox::kSourceManagerNumber) {
            *object = static_cast<mox::ISourceManager*>(this);
        }
        return *object != nullptr;
    }
    std::uint32_t AddReference() override { return 1; }
    std::uint32_t Release() override { return 1; }

    mox::Status GetName(wchar_t* name, std::uint32_t capacity) override
    {
        std::wcsncpy(name, PluginName(), capacity);
        return mox::kSuccess;
    }
    mox::Status GetValue(std::uint32_t* value) override
    {
        *value = 0;
        return mox::kSuccess;
    }
    mox::Status GetIdentifier(mox::Identifier* identifier) override
    {
        *identifier = {0x91D0A3B4, 0x52C6, 0x4E7F, {0xA1, 0x08, 0x3D, 0xE5, 0x66, 0x9B, 0x20, 0x4C}};
        return mox::kSuccess;
    }
    mox::Status SetListEntry(const mox::PluginDescriptor*) override { return mox::kSuccess; }
    mox::Status ShutDown() override
    {
        ::OutputDebugStringW(L"player: ShutDown");
        return mox::kSuccess;
    }

    mox::Status GetCategory(std::uint32_t* category) override
    {
        *category = mox::kDeviceSourceCategory;
        return mox::kSuccess;
    }
    mox::Status RegisterCallback(mox::ICallbackInterface*) override
    {
        waiting = std::thread([this] {
            ended.wait(false);
        });
        return mox::kSuccess;
    }
    mox::Status UnregisterCallback(mox::ICallbackInterface*) override
    {
        ::OutputDebugStringW(L"player: UnregisterCallback");
        ended = true;
        ended.notify_all();
        waiting.join();
        return mox::kSuccess;
    }

private:
    std::atomic<bool> ended = false;
    std::thread waiting;
};

#ifdef STATIC_PLUGIN
Player player;
#else
Player& player = *new Player;
#endif

} // namespace

mox::Status FxPluginMain(mox::IFxBase** object)
{
    // The table of the second interface. Either one works.
    *object = static_cast<mox::ISourceManager*>(&player);
    return mox::kSuccess;
}
