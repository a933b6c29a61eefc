// The road of the plugin host, from its thread's start to the end of a source's tracker: the phone
// manager is there, is scanned, registers the callback and tells of a phone that is ready.
#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/journal.h"
#include "tests/endurance/faults/machine.h"
#include "tests/endurance/faults/sweep.h"
#include "tests/endurance/faults/trackers.h"
#include "tests/trackers/mox/program_folder.h"
#include "tests/trackers/mox/test_plugin/plugin_stage.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace kestraboot::tests
{
namespace
{

constexpr const wchar_t* kPlugin = L".\\moxplugins\\nokiamanager.mox";

int references = 0;

void TellOfAPhone(mox::ICallbackInterface* callback)
{
    static mox::DeviceRecord phone;
    phone.size = mox::kDeviceRecordSize;
    phone.deviceKind = mox::kKindMobile;
    phone.mobileReady = mox::kMobileReady;
    std::wcscpy(phone.deviceId, L"a phone with a name that takes memory");
    if (const mox::Status status = callback->Notify(0, &phone); status != mox::kSuccess) {
        Journal::AddNumber(L"the notification is answered", status);
    }
}

/// As the sweep's table names them; null where the host is told of nothing that fails.
const char* NameOf(Operation operation) noexcept
{
    switch (operation) {
    case Operation::Main:
        return "FxPluginMain";
    case Operation::QueryDescriptor:
        return "IPluginDescriptor::Query.1";
    case Operation::QuerySource:
        return "IPluginDescriptor::Query.13";
    case Operation::GetName:
        return "IPluginDescriptor::GetName";
    case Operation::GetValue:
        return "IPluginDescriptor::GetValue";
    case Operation::GetIdentifier:
        return "IPluginDescriptor::GetIdentifier";
    case Operation::SetListEntry:
        return "IPluginDescriptor::SetListEntry";
    case Operation::ShutDown:
        return "IPluginDescriptor::ShutDown";
    case Operation::QueryCategory:
        return "ISourceManager::Query.13";
    case Operation::GetCategory:
        return "ISourceManager::GetCategory";
    case Operation::Register:
        return "ISourceManager::RegisterCallback";
    case Operation::Unregister:
        return "ISourceManager::UnregisterCallback";
    default:
        return nullptr;
    }
}

bool FailsNow(Operation operation)
{
    const char* const name = NameOf(operation);
    return name != nullptr && FailureNow(name).has_value();
}

class Stage final : public PluginStage
{
public:
    Behaviour BehaviourOf(const std::wstring&) override
    {
        Behaviour behaviour;
        behaviour.onRegister = TellOfAPhone;
        behaviour.failsNow = FailsNow;
        return behaviour;
    }
    void Happened(const std::wstring&, Operation operation) override
    {
        if (operation == Operation::ShutDown) {
            Journal::Add(L"shuts the plugin down");
        } else if (operation == Operation::Register) {
            Journal::Add(L"registers");
        } else if (operation == Operation::Unregister) {
            Journal::Add(L"unregisters");
        }
    }
    void CountReference(const std::wstring&, int change) override { references += change; }
    void TakeEntry(const std::wstring&, const mox::PluginDescriptor*) override {}
} stage;

BOOL TakeMessage(MSG*, HWND, UINT, UINT) noexcept
{
    return FALSE; // the end
}

class PluginAct final : public Act
{
public:
    explicit PluginAct(Machine& where) : machine(where) { machine.Restore(); }
    ~PluginAct() override { FreePlugin(); }

    void Prepare() override
    {
        FreePlugin();
        references = 0;
    }

    void Run() override
    {
        const Armed armed;
        Trackers::Run(Tracker::Plugins);
    }

    void ShowResults() override
    {
        if (references != 0) {
            Journal::AddNumber(L"LEFT references", references);
        }
        if (::GetModuleHandleW(kPlugin) != nullptr) {
            Journal::Add(L"the plugin stays loaded");
        }
    }

private:
    static void FreePlugin()
    {
        while (const HMODULE module = ::GetModuleHandleW(kPlugin)) {
            ::FreeLibrary(module);
        }
    }

    Machine& machine;
};

class PluginFaults : public testing::Test
{
protected:
    PluginFaults() : before(std::filesystem::current_path())
    {
        const std::filesystem::path home = machine.Folder();
        std::filesystem::create_directory(home / "moxplugins");
        std::filesystem::copy_file(ProgramFolder() / "test_plugin.mox",
                                   home / "moxplugins" / "nokiamanager.mox");
        std::filesystem::current_path(home);
    }
    ~PluginFaults() override { std::filesystem::current_path(before); }

    std::filesystem::path before;
    Machine machine;
    ImportPatch get{"GetMessageW", reinterpret_cast<void*>(&TakeMessage)};
    Trackers trackers;
    CallGate gate{ModuleUnderTest(), LetCallGoOn};
};

TEST_F(PluginFaults, OfAPhoneThatIsReady)
{
    Scene scene = {"plugins",
                   [this] {
                       return std::make_unique<PluginAct>(machine);
                   },
                   machine.Folder()};
    scene.waitsForMemory = true;
    scene.keepsMemory = true; // a plugin that stays loaded keeps its tracker
    SweepFaults(scene);
    SweepAllocations(scene);
}

} // namespace
} // namespace kestraboot::tests

extern "C" __declspec(dllexport) kestraboot::tests::PluginStage* KestrabootPluginStage();

kestraboot::tests::PluginStage* KestrabootPluginStage()
{
    return &kestraboot::tests::stage;
}
