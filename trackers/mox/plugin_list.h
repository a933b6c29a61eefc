#pragma once

#include "foundation/text.h"
#include "kestraboot/mox_plugin.h"

#include <windows.h>
#include <cstddef>
#include <list>
#include <string_view>

namespace kestraboot
{

/// The plugins that one owner has loaded, in the order of loading. Use it from one thread at a
/// time.
///
/// A plugin gets the address of its entry, so an entry keeps its address while it is listed. The
/// list does not unload when it is destroyed: its owner calls UnloadAllPlugins, or keeps the list
/// for as long as the plugins.
class PluginList
{
public:
    PluginList() noexcept = default;
    PluginList(const PluginList&) = delete;
    PluginList& operator=(const PluginList&) = delete;

    /// Loads the library at the descriptor's path and lists it; reads nothing else of the
    /// descriptor. If the library is in the process already, succeeds and does not list it.
    /// mox::kFailure: no library, no entry point, no object, no interface 1, or an identifier that
    /// is listed already; the library is then unloaded again.
    [[nodiscard]] mox::Status LoadPlugin(const mox::PluginDescriptor& wanted) noexcept;

    /// Shuts down the plugin at the descriptor's path, frees its library once, and removes its
    /// entry from the list. Succeeds if the library is not in the process. A plugin that cannot be
    /// shut down, or throws, is freed all the same; the result shows the failure.
    mox::Status UnloadPlugin(const mox::PluginDescriptor& wanted) noexcept;

    /// Unloads every listed plugin. Returns the number of entries that it removed from the list.
    std::size_t UnloadAllPlugins() noexcept;

    /// Sets the folder of LoadPluginFolder. mox::kBadArgument: null, or no folder; the previous one
    /// stays.
    [[nodiscard]] mox::Status SetPluginFolder(const wchar_t* path) noexcept;

    /// Loads every "*.mox" of the folder. Returns the number of loads that succeeded.
    [[nodiscard]] std::size_t LoadPluginFolder() noexcept;

    /// Writes the entry with that identifier, which the list owns. mox::kNotListed: there is none,
    /// and nothing is written.
    [[nodiscard]] mox::Status FindPluginById(const mox::Identifier& identifier,
                                             const mox::PluginDescriptor** found) const noexcept;

    [[nodiscard]] const std::list<mox::PluginDescriptor>& Entries() const noexcept { return entries; }

private:
    mox::Status Enlist(HMODULE module, const wchar_t* modulePath) noexcept;
    bool LoadFolderEntry(std::wstring_view fileName) noexcept;

    std::list<mox::PluginDescriptor> entries;
    wchar_t folder[kFieldCapacity] = {};
};

} // namespace kestraboot
