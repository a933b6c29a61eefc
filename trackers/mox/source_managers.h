#pragma once

#include "trackers/mox/plugin_list.h"
#include "trackers/mox/plugin_reference.h"

#include <vector>

namespace kestraboot
{

/// One open source manager for each plugin of a list. Close before a plugin is unloaded. One thread at a
/// time.
///
/// An operation that takes an identifier answers mox::kBadArgument when no plugin of the list has it,
/// and mox::kSourceManagerNotOpen when the plugin has no open manager; otherwise what the plugin
/// answers.
class SourceManagers
{
public:
    /// Refers to the list for as long as it lives.
    explicit SourceManagers(const PluginList& listed) noexcept : plugins(listed) {}
    SourceManagers(const SourceManagers&) = delete;
    SourceManagers& operator=(const SourceManagers&) = delete;

    /// Makes a manager of each listed plugin, in place of those that were open. A plugin that gives none
    /// is left out, as long as another one gives one: one bad plugin does not take the others' devices
    /// away. When none of them does, the answer is why the last one did not. mox::kNoEnumerator: the
    /// list could not be walked.
    [[nodiscard]] mox::Status OpenSourceManagers() noexcept;

    /// Releases them all. mox::kException when one of them throws; all are closed.
    mox::Status CloseSourceManagers() noexcept;

    /// Reads the category of a source. The output is written on success alone; null is
    /// mox::kBadArgument.
    [[nodiscard]] mox::Status GetSourceCategory(const mox::Identifier& identifier,
                                                std::uint32_t* category) const noexcept;

    /// Lends the callback to the plugin, which takes a reference of its own. Null is mox::kBadArgument.
    [[nodiscard]] mox::Status RegisterSourceCallback(const mox::Identifier& identifier,
                                                     mox::ICallbackInterface* callback) const noexcept;

    /// The reverse, with the same callback.
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
