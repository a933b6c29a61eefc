#include "trackers/mox/plugin_list.h"

#include "trackers/mox/identifier.h"
#include "trackers/mox/plugin_module.h"

#include <algorithm>
#include <new>
#include <string_view>

namespace kestraboot
{
namespace
{

/// A field's text, whether or not it is terminated.
template <std::size_t Capacity>
std::wstring_view TextOf(const wchar_t (&field)[Capacity]) noexcept
{
    return {field, ::wcsnlen(field, Capacity)};
}

/// Reads every field of the plugin's entry except for the path. The results are not checked: a
/// field that a plugin does not write stays zero.
mox::Status Describe(const PluginReference<mox::IPluginDescriptor>& plugin,
                     mox::PluginDescriptor& entry) noexcept
{
    return CallPlugin([&] {
        static_cast<void>(plugin->GetValue(&entry.value));
        static_cast<void>(plugin->GetIdentifier(&entry.identifier));
        static_cast<void>(plugin->GetName(entry.name, kFieldCapacity));
        entry.name[kFieldCapacity - 1] = L'\0';
        return mox::kSuccess;
    });
}

mox::Status ShutDown(HMODULE module) noexcept
{
    PluginReference<mox::IFxBase> object;
    mox::Status status = GetPluginObject(module, object);
    PluginReference<mox::IPluginDescriptor> plugin;
    if (status == mox::kSuccess) {
        status = object.Query(mox::kPluginDescriptorNumber, plugin);
    }
    if (status == mox::kSuccess) {
        status = CallPlugin([&] {
            static_cast<void>(plugin->ShutDown()); // the plugin ends, whatever it returns
            return mox::kSuccess;
        });
    }
    const mox::Status released[] = {plugin.Release(), object.Release()};
    for (const mox::Status each : released) {
        status = status == mox::kSuccess ? each : status;
    }
    return status;
}

} // namespace

mox::Status PluginList::LoadPlugin(const mox::PluginDescriptor& wanted) noexcept
{
    wchar_t modulePath[kFieldCapacity];
    CopyToField(modulePath, TextOf(wanted.modulePath));
    if (!IsLoadableFile(modulePath)) {
        return mox::kFailure;
    }
    if (::GetModuleHandleW(modulePath) != nullptr) {
        return mox::kSuccess;
    }
    UniqueModule module = LoadPluginModule(modulePath);
    if (!module) {
        return mox::kFailure;
    }
    const mox::Status status = Enlist(module.get(), modulePath);
    if (status == mox::kSuccess) {
        static_cast<void>(module.release()); // stays loaded until UnloadPlugin
    }
    return status;
}

mox::Status PluginList::Enlist(HMODULE module, const wchar_t* modulePath) noexcept
{
    PluginReference<mox::IFxBase> object;
    mox::Status status = GetPluginObject(module, object);
    if (status != mox::kSuccess) {
        return status;
    }
    PluginReference<mox::IPluginDescriptor> plugin;
    status = object.Query(mox::kPluginDescriptorNumber, plugin);
    if (status != mox::kSuccess) {
        return status;
    }
    std::list<mox::PluginDescriptor> added;
    try {
        added.emplace_back();
    } catch (const std::bad_alloc&) {
        return mox::kOutOfMemory;
    }
    mox::PluginDescriptor& entry = added.back();
    status = Describe(plugin, entry);
    if (status != mox::kSuccess) {
        return status;
    }
    CopyToField(entry.modulePath, modulePath);
    const mox::PluginDescriptor* sameIdentifier = nullptr;
    if (FindPluginById(entry.identifier, &sameIdentifier) == mox::kSuccess) {
        return mox::kFailure;
    }

    entries.splice(entries.end(), added); // the entry keeps its address
    const mox::Status called[] = {
        CallPlugin([&] {
            static_cast<void>(plugin->SetListEntry(&entry)); // a notification: the result is ignored
            return mox::kSuccess;
        }),
        plugin.Release(),
        object.Release(),
    };
    for (const mox::Status each : called) {
        if (each != mox::kSuccess) {
            entries.pop_back();
            return each;
        }
    }
    return mox::kSuccess;
}

mox::Status PluginList::UnloadPlugin(const mox::PluginDescriptor& wanted) noexcept
{
    wchar_t modulePath[kFieldCapacity]; // a copy: `wanted` may be the entry that is removed
    CopyToField(modulePath, TextOf(wanted.modulePath));
    UniqueModule module(::GetModuleHandleW(modulePath)); // owns the load that the list made
    if (!module) {
        return mox::kSuccess;
    }
    const mox::Status status = ShutDown(module.get());
    module.reset();
    // Compares exactly: an entry has the spelling by which it was loaded.
    const auto same = [&](const mox::PluginDescriptor& entry) {
        return TextOf(entry.modulePath) == modulePath;
    };
    const auto entry = std::find_if(entries.begin(), entries.end(), same);
    if (entry != entries.end()) {
        entries.erase(entry);
    }
    return status;
}

std::size_t PluginList::UnloadAllPlugins() noexcept
{
    const std::size_t listed = entries.size();
    while (!entries.empty()) {
        const std::size_t before = entries.size();
        static_cast<void>(UnloadPlugin(entries.front())); // unloaded whatever it returns
        if (entries.size() == before) {
            entries.pop_front(); // other code has freed the library
        }
    }
    return listed;
}

mox::Status PluginList::FindPluginById(const mox::Identifier& identifier,
                                       const mox::PluginDescriptor** found) const noexcept
{
    const auto same = [&](const mox::PluginDescriptor& entry) {
        return SameIdentifier(entry.identifier, identifier);
    };
    const auto entry = std::find_if(entries.begin(), entries.end(), same);
    if (entry == entries.end()) {
        return mox::kNotListed;
    }
    *found = &*entry;
    return mox::kSuccess;
}

} // namespace kestraboot
