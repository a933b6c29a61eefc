// A plugin whose behaviour the stage of its program sets. Each copy of the file is a plugin of its own:
// name and identifier come from the file's name.
//
// In a program without a stage the file's name selects the behaviour:
//   storm-...   8 threads report 100 devices each, at the same time, when the callback is registered
//   slow-...    registering takes 5 seconds
//   refuses-... does not load at all
//   sourceless-... has no source manager
#include "tests/trackers/mox/test_plugin/plugin_stage.h"

#include <windows.h>
#include <atomic>
#include <cstring>
#include <cwchar>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace mox = kestraboot::mox;
using kestraboot::tests::Behaviour;
using kestraboot::tests::Operation;
using kestraboot::tests::PluginStage;

namespace
{

HMODULE thisModule = nullptr;

/// An exception whose code is in this library. It must be destroyed before the library is unloaded.
class PluginError
{
public:
    virtual ~PluginError();
};
PluginError::~PluginError() = default;

class Plugin
{
public:
    Plugin()
    {
        wchar_t path[600] = {};
        ::GetModuleFileNameW(thisModule, path, 600);
        name = std::filesystem::path(path).stem().wstring();
        const FARPROC find =
            ::GetProcAddress(::GetModuleHandleW(nullptr), kestraboot::tests::kStageFunction);
        if (find != nullptr) {
            const auto function = reinterpret_cast<void (*)()>(find);
            stage = reinterpret_cast<kestraboot::tests::StageFunction>(function)();
        }
        if (stage != nullptr) {
            behaviour = stage->BehaviourOf(name);
        } else if (name.starts_with(L"slow-")) {
            behaviour.during = [](Operation operation) {
                ::Sleep(operation == Operation::Register ? 5000 : 0);
            };
        } else if (name.starts_with(L"sourceless-")) {
            behaviour.fails = Operation::QuerySource;
        }
        behaviour.name = behaviour.name.empty() ? name : behaviour.name;
    }

    /// Returns false if the operation is to return nothing.
    bool Enter(Operation operation) const
    {
        if (stage != nullptr) {
            stage->Happened(name, operation);
        }
        if (behaviour.during) {
            behaviour.during(operation);
        }
        if (behaviour.throws == operation) {
            throw PluginError();
        }
        return behaviour.fails != operation && !(behaviour.failsNow && behaviour.failsNow(operation));
    }

    [[nodiscard]] bool WritesNothingIn(Operation operation) const
    {
        return behaviour.silent == operation;
    }

    void Count(int change) const
    {
        if (stage != nullptr) {
            stage->CountReference(name, change);
        }
    }

    [[nodiscard]] mox::Identifier IdentifierOfFile() const
    {
        std::uint64_t hash[2] = {14695981039346656037U, 88172645463325252U};
        for (const wchar_t character : name) {
            hash[0] = (hash[0] ^ character) * 1099511628211U;
            hash[1] = (hash[1] + character) * 6364136223846793005U + 1;
        }
        mox::Identifier identifier = {};
        std::memcpy(&identifier, hash, sizeof identifier);
        return identifier;
    }

    std::wstring name;
    Behaviour behaviour;
    PluginStage* stage = nullptr;
};

/// Made in the first call, so that the host can set the behaviour before it.
const Plugin& ThisPlugin()
{
    static const Plugin plugin;
    return plugin;
}

template <typename Interface, Operation release>
class Counted : public Interface
{
public:
    std::uint32_t AddReference() override
    {
        ThisPlugin().Count(1);
        return ++references;
    }
    std::uint32_t Release() override
    {
        ThisPlugin().Count(-1);
        const std::uint32_t remaining = --references;
        if (remaining == 0) {
            delete this;
        }
        static_cast<void>(ThisPlugin().Enter(release));
        return remaining;
    }

protected:
    Counted() { ThisPlugin().Count(1); }
    virtual ~Counted() = default; // follows the interface's operations in the table

private:
    std::atomic<std::uint32_t> references = 1;
};

class Source final : public Counted<mox::ISourceManager, Operation::ReleaseSource>
{
public:
    bool Query(mox::InterfaceNumber number, void** object) override
    {
        const bool known = number == mox::kSourceManagerNumber;
        if (ThisPlugin().WritesNothingIn(Operation::QueryCategory)) {
            return true;
        }
        *object = nullptr;
        if (ThisPlugin().Enter(known ? Operation::QueryCategory : Operation::QueryOther) && known) {
            AddReference();
            *object = static_cast<mox::ISourceManager*>(this);
        }
        return *object != nullptr;
    }
    mox::Status Reserved3() override
    {
        static_cast<void>(ThisPlugin().Enter(Operation::Reserved));
        return mox::kFailure;
    }
    mox::Status GetCategory(std::uint32_t* category) override
    {
        if (ThisPlugin().WritesNothingIn(Operation::GetCategory)) {
            return mox::kSuccess;
        }
        *category = ThisPlugin().behaviour.category; // if it fails, the host must not use it
        return ThisPlugin().Enter(Operation::GetCategory) ? mox::kSuccess : mox::kFailure;
    }
    mox::Status Reserved5() override { return Reserved3(); }
    mox::Status RegisterCallback(mox::ICallbackInterface* callback) override
    {
        if (!ThisPlugin().Enter(Operation::Register)) {
            return mox::kFailure;
        }
        callback->AddReference();
        kept = callback;
        if (ThisPlugin().behaviour.onRegister) {
            ThisPlugin().behaviour.onRegister(callback);
        }
        if (ThisPlugin().name.starts_with(L"storm-")) {
            for (int number = 0; number < 8; ++number) {
                storm.emplace_back([callback, number] {
                    Storm(callback, number);
                });
            }
        }
        return mox::kSuccess;
    }
    mox::Status UnregisterCallback(mox::ICallbackInterface* callback) override
    {
        for (std::thread& thread : storm) {
            thread.join();
        }
        storm.clear();
        if (kept == callback) {
            kept->Release();
            kept = nullptr;
        }
        return ThisPlugin().Enter(Operation::Unregister) ? mox::kSuccess : mox::kFailure;
    }

private:
    static void Storm(mox::ICallbackInterface* callback, int number)
    {
        for (int count = 0; count < 100; ++count) {
            mox::DeviceRecord device = {};
            device.size = mox::kDeviceRecordSize;
            device.deviceKind = mox::kKindAudio;
            const std::wstring id =
                ThisPlugin().name + L"/" + std::to_wstring(number) + L" " + std::to_wstring(count);
            id.copy(device.deviceId, 259);
            static_cast<void>(callback->Notify(0, &device));
        }
    }

    mox::ICallbackInterface* kept = nullptr;
    std::vector<std::thread> storm;
};

class Descriptor final : public Counted<mox::IPluginDescriptor, Operation::ReleaseDescriptor>
{
public:
    bool Query(mox::InterfaceNumber number, void** object) override
    {
        const bool isDescriptor = number == mox::kPluginDescriptorNumber;
        if (ThisPlugin().WritesNothingIn(isDescriptor ? Operation::QueryDescriptor
                                                      : Operation::QuerySource)) {
            return true;
        }
        *object = nullptr;
        if (isDescriptor) {
            if (ThisPlugin().Enter(Operation::QueryDescriptor)) {
                AddReference();
                *object = static_cast<mox::IPluginDescriptor*>(this);
            }
        } else if (number == mox::kSourceManagerNumber) {
            if (ThisPlugin().Enter(Operation::QuerySource)) {
                *object = static_cast<mox::ISourceManager*>(new Source);
            }
        } else {
            static_cast<void>(ThisPlugin().Enter(Operation::QueryOther));
        }
        return *object != nullptr;
    }
    mox::Status GetName(wchar_t* name, std::uint32_t capacity) override
    {
        if (!ThisPlugin().Enter(Operation::GetName)) {
            return mox::kFailure;
        }
        if (ThisPlugin().WritesNothingIn(Operation::GetName)) {
            return mox::kSuccess;
        }
        const std::wstring& text = ThisPlugin().behaviour.name;
        const std::size_t terminator = ThisPlugin().behaviour.nameWithoutTerminator ? 0 : 1;
        std::wmemcpy(name, text.c_str(), text.size() + terminator); // as long as the test set it
        return capacity == 260 ? mox::kSuccess : mox::kBadArgument;
    }
    mox::Status GetValue(std::uint32_t* value) override
    {
        if (!ThisPlugin().Enter(Operation::GetValue)) {
            return mox::kFailure;
        }
        if (ThisPlugin().WritesNothingIn(Operation::GetValue)) {
            return mox::kSuccess;
        }
        *value = ThisPlugin().behaviour.value;
        return mox::kSuccess;
    }
    mox::Status GetIdentifier(mox::Identifier* identifier) override
    {
        if (!ThisPlugin().Enter(Operation::GetIdentifier)) {
            return mox::kFailure;
        }
        if (ThisPlugin().WritesNothingIn(Operation::GetIdentifier)) {
            return mox::kSuccess;
        }
        const mox::Identifier* const given = ThisPlugin().behaviour.identifier;
        *identifier = given != nullptr ? *given : ThisPlugin().IdentifierOfFile();
        return mox::kSuccess;
    }
    mox::Status SetListEntry(const mox::PluginDescriptor* entry) override
    {
        if (ThisPlugin().stage != nullptr) {
            ThisPlugin().stage->TakeEntry(ThisPlugin().name, entry);
        }
        return ThisPlugin().Enter(Operation::SetListEntry) ? mox::kSuccess : mox::kFailure;
    }
    mox::Status ShutDown() override
    {
        return ThisPlugin().Enter(Operation::ShutDown) ? mox::kSuccess : mox::kFailure;
    }
};

} // namespace

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID unused);

BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID)
{
    thisModule = module;
    if (reason != DLL_PROCESS_ATTACH) {
        return TRUE;
    }
    wchar_t path[600] = {};
    ::GetModuleFileNameW(module, path, 600);
    return std::wcsstr(path, L"refuses-") == nullptr;
}

mox::Status FxPluginMain(mox::IFxBase** object)
{
    if (!ThisPlugin().Enter(Operation::Main)) {
        return mox::kSuccess; // without an object
    }
    *object = new Descriptor;
    return mox::kSuccess;
}
