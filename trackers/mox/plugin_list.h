#pragma once

#include "foundation/text.h"
#include "kestraboot/mox_plugin.h"

#include <windows.h>
#include <cstddef>
#include <list>
#include <string_view>

namespace kestraboot
{

/// The plugins that one owner has loaded, in the order of loading. One thread at a time.
///
/// A plugin is given the address of its entry: an entry keeps its place while it is listed. The list
/// does not unload when it goes: whoever owns it calls UnloadAllPlugins, or keeps it as long as the
/// plugins.
class PluginList
{
public:
    PluginList() noexcept = default;
    PluginList(const PluginList&) = delete;
    PluginList& operator=(const PluginList&) = delete;

    /// Loads the library at the descriptor's path and lists it; nothing else of the descriptor is read.
    /// A library that is in the process already succeeds and is not listed. mox::kFailure: no library,
    /// no entry point, no object, no interface 1, or an identifier that is listed already; it is
    /// unloaded again.
    [[nodiscard]] mox::Status LoadPlugin(const mox::PluginDescriptor& wanted) noexcept;

    /// Shuts the plugin at the descriptor's path down, frees its library once, and takes its entry from
    /// the list. Succeeds when the library is not in the process. A plugin that cannot be shut down, or
    /// throws, is freed all the same; the answer tells.
    mox::Status UnloadPlugin(const mox::PluginDescriptor& wanted) noexcept;

    /// Unloads every listed plugin. Returns how many entries it took from the list.
    std::size_t UnloadAllPlugins() noexcept;

    /// Where LoadPluginFolder looks. mox::kBadArgument: null, or no folder; the folder before is kept.
    [[nodiscard]] mox::Status SetPluginFolder(const wchar_t* path) noexcept;

    /// Loads every "*.mox" of the folder. Returns how many loads succeeded.
    [[nodiscard]] std::size_t LoadPluginFolder() noexcept;

    /// Writes the entry with that identifier; it stays the list's. mox::kNotListed: none, nothing is
    /// written.
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
