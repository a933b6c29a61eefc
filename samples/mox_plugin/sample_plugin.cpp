// The smallest complete device plugin, to start your own from.
//
// It needs the kit's one header and Windows. A real plugin talks to its devices; this one takes the
// named event "KestrabootSampleDevice" for one: each time somebody sets it, a camera has arrived.
//
// Three things make a plugin: an object that describes it (SampleDescriptor), a source manager that
// reports devices (SampleSource, in sample_source.h), and FxPluginMain, which hands out the first.
//
// None of them is a static object, because of the thread: at the end of the process nobody unregisters
// the callback or calls ShutDown. If the host exits by ExitProcess, Windows stops the thread where it
// is, and then destroys static objects, under the loader's lock. A static std::thread would call
// std::terminate there. The thread here belongs to the source manager, and the host never gives back its
// last reference to that at the end: no destructor runs.
#include "sample_source.h"

#include <cwchar>
#include <new>

namespace mox = kestraboot::mox;

namespace
{

// Make one of your own for each plugin: the host refuses a second plugin with the same one.
constexpr mox::Identifier kSampleIdentifier = {
    0x6F1B0E52, 0x9A37, 0x4C0D, {0x8E, 0x21, 0x53, 0xB4, 0x07, 0xD9, 0x6A, 0xC8}};

// The plugin's description: interface 1. It also makes the source manager when it is asked for
// interface 13.
class SampleDescriptor final : public mox::IPluginDescriptor
{
public:
    bool Query(mox::InterfaceNumber number, void** object) override
    {
        *object = nullptr;
        if (number == mox::kPluginDescriptorNumber) {
            AddReference();
            *object = static_cast<mox::IPluginDescriptor*>(this);
        } else if (number == mox::kSourceManagerNumber) {
            *object = static_cast<mox::ISourceManager*>(new (std::nothrow) SampleSource);
        }
        return *object != nullptr;
    }

    std::uint32_t AddReference() override
    {
        return static_cast<std::uint32_t>(::InterlockedIncrement(&references));
    }

    std::uint32_t Release() override
    {
        const LONG remaining = ::InterlockedDecrement(&references);
        if (remaining == 0) {
            delete this;
        }
        return static_cast<std::uint32_t>(remaining);
    }

    mox::Status GetName(wchar_t* name, std::uint32_t capacity) override
    {
        std::wcsncpy(name, L"Sample devices", capacity - 1);
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
        *identifier = kSampleIdentifier;
        return mox::kSuccess;
    }

    // The host's record of this plugin, valid until ShutDown. This one has no use for it.
    mox::Status SetListEntry(const mox::PluginDescriptor*) override { return mox::kSuccess; }

    // The library goes next; at the end of the process this is not called. The only thread belongs to
    // the source manager, which is gone by now.
    mox::Status ShutDown() override { return mox::kSuccess; }

private:
    ~SampleDescriptor() = default;

    volatile LONG references = 1;
};

} // namespace

// Called often: for the description, for the source manager, for the end.
mox::Status FxPluginMain(mox::IFxBase** object)
{
    *object = new (std::nothrow) SampleDescriptor;
    return *object != nullptr ? mox::kSuccess : mox::kOutOfMemory;
}
