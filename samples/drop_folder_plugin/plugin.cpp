// A plugin whose device is a folder: it arrives when pictures are dropped into it. README.md says how it
// is used. FxPluginMain hands out the descriptor, the descriptor makes the source
// (drop_folder_source.h), and the source watches the folder on a thread of its own (folder_watch.h).
#include "counted.h"
#include "drop_folder_source.h"
#include "texts.h"

#include <cwchar>
#include <new>

namespace mox = kestraboot::mox;

namespace
{

// Make one of your own for each plugin: of two with the same one the host takes the first.
constexpr mox::Identifier kIdentifier = {
    0xB1D4A96E, 0x0C57, 0x4F3A, {0xA8, 0x19, 0x72, 0xE0, 0x5D, 0xC3, 0x48, 0x1F}};

// The plugin's description: interface 1. It also makes the source manager when it is asked for
// interface 13.
class DropFolderDescriptor final : public Counted<mox::IPluginDescriptor>
{
public:
    bool Query(mox::InterfaceNumber number, void** object) override
    {
        *object = nullptr;
        if (number == mox::kPluginDescriptorNumber) {
            AddReference();
            *object = static_cast<mox::IPluginDescriptor*>(this);
        } else if (number == mox::kSourceManagerNumber) {
            *object = static_cast<mox::ISourceManager*>(new (std::nothrow) DropFolderSource);
        }
        return *object != nullptr;
    }

    mox::Status GetName(wchar_t* name, std::uint32_t capacity) override
    {
        std::wcsncpy(name, texts::kPluginName, capacity - 1);
        name[capacity - 1] = L'\0';
        return mox::kSuccess;
    }

    mox::Status GetValue(std::uint32_t* value) override
    {
        *value = 1; // the plugin's own; the host only keeps it
        return mox::kSuccess;
    }

    mox::Status GetIdentifier(mox::Identifier* identifier) override
    {
        *identifier = kIdentifier;
        return mox::kSuccess;
    }

    mox::Status SetListEntry(const mox::PluginDescriptor*) override { return mox::kSuccess; }

    // The only thread belongs to the source, which is gone by now.
    mox::Status ShutDown() override { return mox::kSuccess; }
};

} // namespace

mox::Status FxPluginMain(mox::IFxBase** object)
{
    *object = new (std::nothrow) DropFolderDescriptor;
    return *object != nullptr ? mox::kSuccess : mox::kOutOfMemory;
}
