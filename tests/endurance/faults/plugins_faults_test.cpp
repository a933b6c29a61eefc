// The road of the plugin host, from its thread's start to the end of a source's tracker: the phone
// manager exists, is scanned, registers the callback and reports a phone that is ready.
#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/journal.h"
#include "tests/endurance/faults/machine.h"
#include "tests/endurance/faults/sweep.h"
#include "tests/endurance/faults/trackers.h"
#include "tests/support/program_folder.h"
#include "tests/trackers/mox/test_plugin/plugin_stage.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace kestraboot::tests
{
namespace
{

constexpr const char* kReportsNothing = "a loaded plugin that reports nothing";
constexpr const wchar_t* kPlugin = L".\\moxplugins\\nokiamanager.mox";

int references = 0;
bool isRegistered = false; ///< whether the callback was, in this run

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

/// The sweep's table names them so; null if the host gets no failing result.
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
            isRegistered = true;
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
        isRegistered = false;
    }

    void Run() override
    {
        const Armed armed;
        Trackers::Run(Tracker::Plugins);
    }

    void ShowResults() override
    {
        if (references != 0) {
            Journal::AddNumber(L"LEFT BEHIND references", references);
        }
        if (::GetModuleHandleW(kPlugin) != nullptr) {
            Journal::Add(isRegistered ? L"LEFT BEHIND the plugin loaded"
                                      : L"LEFT BEHIND a loaded plugin that reports nothing");
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

    Scene PhoneScene()
    {
        Scene scene = {"plugins",
                       [this] {
                           return std::make_unique<PluginAct>(machine);
                       },
                       machine.Folder()};
        scene.waitsForMemory = true;
        const char* const tracker = "its tracker runs until the process ends";
        scene.kept = {{"", "the plugin loaded", tracker},
                      {"", "blocks of memory 5", tracker},
                      {"GetName 2:", "blocks of memory 4", "the same, with a name that takes none"},
                      {"allocations work", "blocks of memory 10", "of two runs, each with its tracker"}};
        scene.kept.push_back(
            {"GetModuleHandleW 6:", kReportsNothing, "the library to free is not found"});
        for (const char* const call : {"GetIdentifier 2:", "GetIdentifier 3:", "GetModuleHandleW 8:",
                                       "GetProcAddress 8:", "FxPluginMain 8:", "Query.13 3:"}) {
            scene.kept.push_back(
                {call, kReportsNothing, "its tracker opens no source and ends without it"});
        }
        return scene;
    }

    std::filesystem::path before;
    Machine machine;
    ImportPatch get{"GetMessageW", TakeMessage};
    Trackers trackers;
    CallGate gate{ModuleUnderTest(), LetCallGoOn};
};

TEST_F(PluginFaults, OfAPhoneThatIsReady)
{
    const Scene scene = PhoneScene();
    SweepFaults(scene);
    SweepAllocations(scene);
}

TEST_F(PluginFaults, OfAPhoneThatIsReadyInPairs)
{
    Scene scene = PhoneScene();
    scene.kept.push_back({"", kReportsNothing, "see below, of either of the two"});
    scene.kept.push_back({"", "blocks of memory 4", "the tracker, with a name that takes none"});
    SweepPairs(scene, 100); // the most expensive scene
}

} // namespace
} // namespace kestraboot::tests

extern "C" __declspec(dllexport) kestraboot::tests::PluginStage* KestrabootPluginStage();

kestraboot::tests::PluginStage* KestrabootPluginStage()
{
    return &kestraboot::tests::stage;
}
