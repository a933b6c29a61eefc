#include "tests/endurance/interleavings/plugin_in_scene.h"

#include <cwchar>

namespace kestraboot::interleavings
{
namespace
{

PluginInScene* plugins[2] = {};

template <int index>
mox::Status EntryOf(mox::IFxBase** object)
{
    *object = static_cast<mox::IPluginDescriptor*>(plugins[index]);
    return mox::kSuccess;
}

constexpr mox::PluginMain kEntries[] = {EntryOf<0>, EntryOf<1>};

} // namespace

PluginInScene::PluginInScene(Machine& machine, int which, int howOften, EndsThread how)
    : index(which), reports(howOften), ends(how), library(machine.libraries[PathOf(which)])
{
    library.entry = kEntries[index];
    plugins[index] = this;
}

void PluginInScene::MustBeLoaded(const char* operation) const
{
    if (library.loads <= 0) {
        Scheduler::Running()->Fail(std::string(operation) + " of a plugin whose library was freed");
    }
}

bool PluginInScene::Query(mox::InterfaceNumber number, void** object)
{
    MustBeLoaded("Query");
    *object = nullptr;
    if (number == mox::kPluginDescriptorNumber) {
        *object = static_cast<mox::IPluginDescriptor*>(this);
    } else if (number == mox::kSourceManagerNumber) {
        *object = static_cast<mox::ISourceManager*>(this);
    }
    return *object != nullptr;
}

std::uint32_t PluginInScene::AddReference()
{
    MustBeLoaded("AddReference");
    return 1;
}

std::uint32_t PluginInScene::Release()
{
    MustBeLoaded("Release");
    return 1;
}

mox::Status PluginInScene::GetName(wchar_t* name, std::uint32_t)
{
    std::wcscpy(name, L"Players");
    return mox::kSuccess;
}

mox::Status PluginInScene::GetValue(std::uint32_t* value)
{
    *value = 0;
    return mox::kSuccess;
}

mox::Status PluginInScene::GetIdentifier(mox::Identifier* identifier)
{
    MustBeLoaded("GetIdentifier");
    *identifier = IdentifierOf(index);
    return mox::kSuccess;
}

mox::Status PluginInScene::SetListEntry(const mox::PluginDescriptor*)
{
    MustBeLoaded("SetListEntry");
    return mox::kSuccess;
}

mox::Status PluginInScene::ShutDown()
{
    MustBeLoaded("ShutDown");
    return mox::kSuccess;
}

mox::Status PluginInScene::GetCategory(std::uint32_t* category)
{
    MustBeLoaded("GetCategory");
    *category = mox::kDeviceSourceCategory;
    return mox::kSuccess;
}

mox::Status PluginInScene::RegisterCallback(mox::ICallbackInterface* given)
{
    MustBeLoaded("RegisterCallback");
    callback = given;
    callback->AddReference();
    if (ends == EndsThread::WithItsReference) {
        callback->AddReference();
    }
    thread = Scheduler::Running()->Start("plugin " + std::to_string(index), [this] {
        Report();
    });
    Scheduler::Running()->Point("RegisterCallback");
    return mox::kSuccess;
}

mox::Status PluginInScene::UnregisterCallback(mox::ICallbackInterface*)
{
    MustBeLoaded("UnregisterCallback");
    ending = true;
    if (ends == EndsThread::AndWaits) {
        Scheduler::Running()->Await("waits for the plugin's thread", [this] {
            return Scheduler::Current().Ended(thread);
        });
    }
    callback->Release();
    unregistered = true;
    return mox::kSuccess;
}

void PluginInScene::Report()
{
    for (int report = 0; report < reports; ++report) {
        Scheduler::Running()->Point("has a device");
        MustBeLoaded("the thread");
        if (ending && ends == EndsThread::AndWaits) {
            return;
        }
        mox::DeviceRecord device = {};
        device.eventCode = mox::kDeviceArrived;
        device.size = mox::kDeviceRecordSize;
        device.deviceKind = mox::kKindAudio;
        DeviceOf(report).copy(device.deviceId, mox::kFieldLength - 1);
        callback->Notify(0, &device);
        ++reported;
        if (unregistered && ends == EndsThread::AndWaits) {
            Scheduler::Running()->Fail("a report after the source was unregistered");
        }
    }
    if (ends == EndsThread::WithItsReference) {
        callback->Release();
    }
}

const wchar_t* PluginInScene::PathOf(int index)
{
    return index == 0 ? L".\\moxplugins\\nokiamanager.mox" : L".\\moxplugins\\other.mox";
}

mox::Identifier PluginInScene::IdentifierOf(int index)
{
    return {static_cast<std::uint32_t>(index) + 1, 0, 0, {}};
}

std::wstring PluginInScene::DeviceOf(int report) const
{
    return L"player " + std::to_wstring(index) + L"." + std::to_wstring(report);
}

} // namespace kestraboot::interleavings
