#pragma once

#include "trackers/mox/plugin_list.h"
#include "trackers/mox/plugin_reference.h"

#include <vector>

namespace kestraboot
{

/// One open source manager for each plugin of a list. Close them before a plugin is unloaded. Use
/// it from one thread at a time.
///
/// An operation that takes an identifier returns mox::kBadArgument if no plugin of the list has it,
/// and mox::kSourceManagerNotOpen if the plugin has no open manager; otherwise the plugin's own
/// result.
class SourceManagers
{
public:
    /// Refers to the list for as long as it lives.
    explicit SourceManagers(const PluginList& listed) noexcept : plugins(listed) {}
    SourceManagers(const SourceManagers&) = delete;
    SourceManagers& operator=(const SourceManagers&) = delete;

    /// Creates a manager of each listed plugin, in place of the open ones. If at least one plugin
    /// returns a manager, those that return none are left out, so that one bad plugin does not hide
    /// the others' devices. If none does, the result is the last one's failure. mox::kNoEnumerator:
    /// the list could not be enumerated.
    [[nodiscard]] mox::Status OpenSourceManagers() noexcept;

    /// Releases them all. mox::kException if one of them throws; all are closed.
    mox::Status CloseSourceManagers() noexcept;

    /// Reads the category of a source. Writes the output on success alone; null is
    /// mox::kBadArgument.
    [[nodiscard]] mox::Status GetSourceCategory(const mox::Identifier& identifier,
                                                std::uint32_t* category) const noexcept;

    /// Passes the callback to the plugin, which adds a reference of its own. Null is
    /// mox::kBadArgument.
    [[nodiscard]] mox::Status RegisterSourceCallback(const mox::Identifier& identifier,
                                                     mox::ICallbackInterface* callback) const noexcept;

    /// Unregisters the same callback.
    mox::Status UnregisterSourceCallback(const mox::Identifier& identifier,
                                         mox::ICallbackInterface* callback) const noexcept;

private:
    struct OpenManager {
        mox::Identifier identifier;
        PluginReference<mox::ISourceManager> object;
    };

    mox::Status OpenEach(mox::IEnumSourceManager& sources);
    mox::Status OpenOne(const mox::Identifier& identifier);
    mox::Status Find(const mox::Identifier& identifier, const OpenManager** found) const noexcept;

    const PluginList& plugins;
    std::vector<OpenManager> managers;
};

} // namespace kestraboot
