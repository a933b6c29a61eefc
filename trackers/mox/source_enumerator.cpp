#include "trackers/mox/source_enumerator.h"

#include "foundation/text.h"

#include <new>

namespace kestraboot
{

CEnumSourceManager::CEnumSourceManager(const std::list<mox::PluginDescriptor>& plugins)
{
    entries.reserve(plugins.size());
    for (const mox::PluginDescriptor& plugin : plugins) {
        mox::SourceInfo& entry = entries.emplace_back();
        entry.version = mox::kSourceInfoVersion;
        entry.size = mox::kSourceInfoSize;
        CopyToField(entry.name, plugin.name);
        entry.value = plugin.value;
        entry.identifier = plugin.identifier;
    }
}

bool CEnumSourceManager::Query(mox::InterfaceNumber number, void** object) noexcept
{
    if (object == nullptr) {
        return false;
    }
    *object = nullptr;
    switch (number) {
    case mox::kFxBaseNumber:
    case mox::kEnumNumber:
    case mox::kEnumSourceManagerNumber:
        AddReference();
        *object = static_cast<mox::IEnumSourceManager*>(this); // the three share one table
        return true;
    default:
        return false;
    }
}

std::uint32_t CEnumSourceManager::AddReference() noexcept
{
    return ++references;
}

std::uint32_t CEnumSourceManager::Release() noexcept
{
    const std::uint32_t remaining = --references;
    if (remaining == 0) {
        delete this;
    }
    return remaining;
}

mox::Status CEnumSourceManager::GetCount(std::uint32_t* count) noexcept
{
    if (count == nullptr) {
        return mox::kBadArgument;
    }
    *count = static_cast<std::uint32_t>(entries.size());
    return mox::kSuccess;
}

mox::Status CEnumSourceManager::Next(mox::SourceInfo* info) noexcept
{
    if (current == entries.size()) {
        return mox::kEndOfEnumeration;
    }
    if (info == nullptr || info->version != mox::kSourceInfoVersion ||
        info->size != mox::kSourceInfoSize) {
        return mox::kBadArgument;
    }
    const mox::SourceInfo& entry = entries[current++];
    CopyToField(info->name, entry.name);
    info->value = entry.value;
    info->identifier = entry.identifier;
    return mox::kSuccess;
}

mox::Status CEnumSourceManager::Reset() noexcept
{
    current = 0;
    return mox::kSuccess;
}

mox::Status CreateSourceEnumerator(const std::list<mox::PluginDescriptor>& plugins,
                                   mox::IEnumSourceManager** output) noexcept
{
    if (output == nullptr || *output != nullptr) {
        return mox::kBadArgument;
    }
    try {
        *output = new CEnumSourceManager(plugins);
    } catch (const std::bad_alloc&) {
        return mox::kOutOfMemory;
    }
    return mox::kSuccess;
}

} // namespace kestraboot
