#include "trackers/mox/source_managers.h"

#include "trackers/mox/identifier.h"
#include "trackers/mox/plugin_module.h"
#include "trackers/mox/source_enumerator.h"

#include <algorithm>
#include <new>

namespace kestraboot
{

mox::Status SourceManagers::OpenSourceManagers() noexcept
{
    static_cast<void>(CloseSourceManagers()); // closed even if a plugin throws
    mox::IEnumSourceManager* made = nullptr;
    if (CreateSourceEnumerator(plugins.Entries(), &made) != mox::kSuccess) {
        return mox::kNoEnumerator;
    }
    PluginReference<mox::IEnumSourceManager> sources;
    sources.Take(made);
    try {
        return OpenEach(*made);
    } catch (const std::bad_alloc&) {
        static_cast<void>(CloseSourceManagers());
        return mox::kOutOfMemory;
    }
}

mox::Status SourceManagers::OpenEach(mox::IEnumSourceManager& sources)
{
    mox::Status failure = mox::kSuccess;
    mox::SourceInfo source = {};
    source.version = mox::kSourceInfoVersion;
    source.size = mox::kSourceInfoSize;
    while (sources.Next(&source) == mox::kSuccess) {
        const mox::Status status = OpenOne(source.identifier);
        failure = status == mox::kSuccess ? failure : status;
    }
    return managers.empty() ? failure : mox::kSuccess;
}

mox::Status SourceManagers::OpenOne(const mox::Identifier& identifier)
{
    const mox::PluginDescriptor* plugin = nullptr;
    mox::Status status = plugins.FindPluginById(identifier, &plugin);
    if (status != mox::kSuccess) {
        return status;
    }
    OpenManager manager = {identifier, {}};
    status = CreatePluginObject(plugin->modulePath, mox::kSourceManagerNumber, manager.object);
    if (status == mox::kSuccess) {
        managers.push_back(std::move(manager));
    }
    return status;
}

mox::Status SourceManagers::CloseSourceManagers() noexcept
{
    mox::Status status = mox::kSuccess;
    for (OpenManager& manager : managers) {
        const mox::Status released = manager.object.Release();
        status = released == mox::kSuccess ? status : released;
    }
    managers.clear();
    return status;
}

mox::Status SourceManagers::Find(const mox::Identifier& identifier,
                                 const OpenManager** found) const noexcept
{
    const auto same = [&](const OpenManager& manager) {
        return SameIdentifier(manager.identifier, identifier);
    };
    const auto manager = std::find_if(managers.begin(), managers.end(), same);
    if (manager != managers.end()) {
        *found = &*manager;
        return mox::kSuccess;
    }
    const mox::PluginDescriptor* listed = nullptr;
    return plugins.FindPluginById(identifier, &listed) == mox::kSuccess ? mox::kSourceManagerNotOpen
                                                                        : mox::kBadArgument;
}

mox::Status SourceManagers::GetSourceCategory(const mox::Identifier& identifier,
                                              std::uint32_t* category) const noexcept
{
    if (category == nullptr) {
        return mox::kBadArgument;
    }
    const OpenManager* manager = nullptr;
    mox::Status status = Find(identifier, &manager);
    if (status != mox::kSuccess) {
        return status;
    }
    PluginReference<mox::ISourceManager> source;
    status = manager->object.Query(mox::kSourceManagerNumber, source);
    if (status != mox::kSuccess) {
        return status;
    }
    std::uint32_t answer = 0;
    status = CallPlugin([&] {
        return source->GetCategory(&answer);
    });
    const mox::Status released = source.Release();
    status = status == mox::kSuccess ? released : status;
    if (status == mox::kSuccess) {
        *category = answer;
    }
    return status;
}

mox::Status SourceManagers::RegisterSourceCallback(const mox::Identifier& identifier,
                                                   mox::ICallbackInterface* callback) const noexcept
{
    const OpenManager* manager = nullptr;
    const mox::Status status = callback == nullptr ? mox::kBadArgument : Find(identifier, &manager);
    return status != mox::kSuccess ? status : CallPlugin([&] {
        return manager->object->RegisterCallback(callback);
    });
}

mox::Status SourceManagers::UnregisterSourceCallback(const mox::Identifier& identifier,
                                                     mox::ICallbackInterface* callback) const noexcept
{
    const OpenManager* manager = nullptr;
    const mox::Status status = callback == nullptr ? mox::kBadArgument : Find(identifier, &manager);
    return status != mox::kSuccess ? status : CallPlugin([&] {
        return manager->object->UnregisterCallback(callback);
    });
}

} // namespace kestraboot
