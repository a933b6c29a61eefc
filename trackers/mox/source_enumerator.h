#pragma once

#include "kestraboot/mox_plugin.h"

#include <atomic>
#include <list>
#include <vector>

namespace kestraboot
{

/// The host's enumerator: the sources of the plugins that were listed when it was created. It owns
/// copies, and frees itself with its last reference. Use it from one thread at a time; reference
/// counting is callable from any thread.
class CEnumSourceManager final : public mox::IEnumSourceManager
{
public:
    /// Has one reference, for its creator. Throws std::bad_alloc.
    explicit CEnumSourceManager(const std::list<mox::PluginDescriptor>& plugins);

    bool Query(mox::InterfaceNumber number, void** object) noexcept override;
    std::uint32_t AddReference() noexcept override;
    std::uint32_t Release() noexcept override;
    mox::Status GetCount(std::uint32_t* count) noexcept override;
    mox::Status Next(mox::SourceInfo* info) noexcept override;
    mox::Status Reset() noexcept override;

private:
    ~CEnumSourceManager() = default;

    std::atomic<std::uint32_t> references = 1;
    std::vector<mox::SourceInfo> entries;
    std::size_t current = 0;
};

/// Creates an enumerator of `plugins`, with one reference for the caller. mox::kBadArgument: no
/// output, or one that points at an object already. mox::kOutOfMemory: it cannot be created.
[[nodiscard]] mox::Status CreateSourceEnumerator(const std::list<mox::PluginDescriptor>& plugins,
                                                 mox::IEnumSourceManager** output) noexcept;

} // namespace kestraboot
