#include "tests/samples/loaded_plugin.h"

#include "tests/support/compatible_application.h"
#include "tests/support/import_patch.h"

#include <chrono>
#include <filesystem>
#include <stdexcept>

namespace kestraboot::tests
{

mox::Status KeptReports::Notify(std::uint64_t, const mox::DeviceRecord* record)
{
    called.Set();
    if (mayReturn != nullptr) {
        mayReturn->Wait();
    }
    if (refusals > 0) {
        --refusals;
        return mox::kOutOfMemory;
    }
    const std::lock_guard lock(mutex);
    records.push_back(*record);
    grew.notify_all();
    return mox::kSuccess;
}

bool KeptReports::Await(std::size_t reports)
{
    std::unique_lock lock(mutex);
    return grew.wait_for(lock, std::chrono::seconds(30), [&] {
        return records.size() >= reports;
    });
}

std::vector<mox::DeviceRecord> KeptReports::Records()
{
    const std::lock_guard lock(mutex);
    return records;
}

LoadedPlugin::LoadedPlugin(const wchar_t* file)
    : module(::LoadLibraryW((std::filesystem::path(RunningExecutable()).parent_path() / file).c_str())),
      before(ModuleUnderTest())
{
    if (module == nullptr) {
        throw std::runtime_error("the plugin cannot be loaded");
    }
    SetModuleUnderTest(module);
    source = static_cast<mox::ISourceManager*>(Ask(mox::kSourceManagerNumber));
}

LoadedPlugin::~LoadedPlugin()
{
    if (source != nullptr) {
        source->Release();
    }
    if (auto* const descriptor =
            static_cast<mox::IPluginDescriptor*>(Ask(mox::kPluginDescriptorNumber))) {
        descriptor->ShutDown();
        descriptor->Release();
    }
    SetModuleUnderTest(before);
    ::FreeLibrary(module);
}

void* LoadedPlugin::Ask(mox::InterfaceNumber number) const
{
    void* const address = reinterpret_cast<void*>(::GetProcAddress(module, "FxPluginMain"));
    mox::IFxBase* base = nullptr;
    reinterpret_cast<mox::PluginMain>(address)(&base);
    void* object = nullptr;
    if (base != nullptr) {
        base->Query(number, &object);
        base->Release();
    }
    return object;
}

} // namespace kestraboot::tests
