#include "tests/endurance/fuzz/fake_plugins.h"

#include <array>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace kestraboot::fuzz
{
namespace
{

constexpr std::size_t kMostPlugins = 8;

/// The plugin of a library handle.
std::array<FakePlugin*, kMostPlugins> modules = {};

void ThrowIf(bool faulty)
{
    if (faulty) {
        throw std::runtime_error("plugin");
    }
}

/// The common part of every object of a plugin; objects are never freed before the plugin.
template <typename Interface>
class PluginObject : public Interface
{
public:
    explicit PluginObject(FakePlugin& owner) : plugin(owner) {}
    PluginObject(const PluginObject&) = delete;
    PluginObject& operator=(const PluginObject&) = delete;

    std::uint32_t AddReference() override
    {
        ++plugin.objects;
        return ++references;
    }
    std::uint32_t Release() override
    {
        --plugin.objects;
        const std::uint32_t left = --references;
        if (left == 0) {
            delete this;
        }
        return left;
    }

protected:
    virtual ~PluginObject() = default;
    FakePlugin& plugin;

private:
    std::uint32_t references = 0;
};

template <typename Object, typename Interface>
void Give(FakePlugin& plugin, void** object)
{
    auto* const made = new Object(plugin);
    made->AddReference();
    *object = static_cast<Interface*>(made);
}

class Descriptor final : public PluginObject<mox::IPluginDescriptor>
{
public:
    using PluginObject::PluginObject;

    bool Query(mox::InterfaceNumber, void**) override { return false; }
    mox::Status GetName(wchar_t* name, std::uint32_t capacity) override
    {
        ThrowIf(plugin.loadFault == LoadFault::NameThrows);
        if (plugin.loadFault == LoadFault::UnterminatedName) {
            plugin.name.copy(name, capacity);
        } else if (plugin.loadFault != LoadFault::WritesNothing) {
            name[plugin.name.copy(name, capacity - 1)] = L'\0';
        }
        return Answer();
    }
    mox::Status GetValue(std::uint32_t* value) override
    {
        ThrowIf(plugin.loadFault == LoadFault::ValueThrows);
        *value = plugin.loadFault == LoadFault::WritesNothing ? *value : plugin.value;
        return Answer();
    }
    mox::Status GetIdentifier(mox::Identifier* identifier) override
    {
        ThrowIf(plugin.loadFault == LoadFault::IdentifierThrows);
        if (plugin.loadFault != LoadFault::WritesNothing) {
            *identifier = {plugin.identifier, 0, 0, {}};
        }
        return Answer();
    }
    mox::Status SetListEntry(const mox::PluginDescriptor* entry) override
    {
        ThrowIf(plugin.loadFault == LoadFault::EntryThrows);
        plugin.entry = entry;
        return Answer();
    }
    mox::Status ShutDown() override
    {
        ++plugin.shutDowns;
        ThrowIf(plugin.sourceFault == SourceFault::ShutDownThrows);
        return Answer();
    }

private:
    ~Descriptor() override = default;
    [[nodiscard]] mox::Status Answer() const
    {
        return plugin.loadFault == LoadFault::FailingStatuses ? mox::kFailure : mox::kSuccess;
    }
};

class Source final : public PluginObject<mox::ISourceManager>
{
public:
    using PluginObject::PluginObject;

    bool Query(mox::InterfaceNumber number, void** object) override
    {
        if (number != mox::kSourceManagerNumber) {
            *object = nullptr;
            return false;
        }
        AddReference();
        *object = static_cast<mox::ISourceManager*>(this);
        return true;
    }
    mox::Status GetCategory(std::uint32_t* category) override
    {
        ThrowIf(plugin.sourceFault == SourceFault::CategoryThrows);
        *category = plugin.category; // even if it reports a failure
        return plugin.sourceFault == SourceFault::CategoryFails ? 0xC0001234 : mox::kSuccess;
    }
    mox::Status RegisterCallback(mox::ICallbackInterface*) override
    {
        ThrowIf(plugin.sourceFault == SourceFault::RegisterThrows);
        const bool fails = plugin.sourceFault == SourceFault::RegisterFails;
        plugin.callbacks += fails ? 0 : 1;
        return fails ? 0xC0004321 : mox::kSuccess;
    }
    mox::Status UnregisterCallback(mox::ICallbackInterface*) override
    {
        --plugin.callbacks;
        return mox::kSuccess;
    }

private:
    ~Source() override = default;
};

class Main final : public PluginObject<mox::IFxBase>
{
public:
    using PluginObject::PluginObject;

    bool Query(mox::InterfaceNumber number, void** object) override
    {
        *object = nullptr;
        if (number == mox::kPluginDescriptorNumber) {
            ThrowIf(plugin.loadFault == LoadFault::QueryThrows);
            if (plugin.loadFault == LoadFault::NoInterface ||
                plugin.loadFault == LoadFault::TrueWithoutInterface) {
                return plugin.loadFault == LoadFault::TrueWithoutInterface;
            }
            Give<Descriptor, mox::IPluginDescriptor>(plugin, object);
            return true;
        }
        ThrowIf(plugin.sourceFault == SourceFault::ManagerThrows);
        if (number == mox::kSourceManagerNumber && plugin.sourceFault != SourceFault::NoManager) {
            Give<Source, mox::ISourceManager>(plugin, object);
        }
        return *object != nullptr;
    }

private:
    ~Main() override = default;
};

mox::Status PluginMain(FakePlugin& plugin, mox::IFxBase** object)
{
    ThrowIf(plugin.loadFault == LoadFault::MainThrows);
    *object = nullptr;
    if (plugin.loadFault != LoadFault::NoObject) {
        void* made = nullptr;
        Give<Main, mox::IFxBase>(plugin, &made);
        *object = static_cast<mox::IFxBase*>(made);
    }
    return mox::kFailure; // no caller reads it
}

/// An entry point for each plugin.
template <std::size_t index>
mox::Status EntryOf(mox::IFxBase** object)
{
    return PluginMain(*modules[index], object);
}

template <std::size_t... indices>
constexpr std::array<mox::PluginMain, kMostPlugins> Entries(std::index_sequence<indices...>)
{
    return {&EntryOf<indices>...};
}

constexpr auto kEntries = Entries(std::make_index_sequence<kMostPlugins>());

HMODULE ModuleAt(std::size_t index)
{
    return reinterpret_cast<HMODULE>(0x7000 + index);
}

} // namespace

FakePlugins::FakePlugins()
    : test([this](const wchar_t* path, HANDLE, DWORD flags) -> HMODULE {
          CountErrorBoxes();
          FakePlugin* const plugin = At(path);
          if (plugin == nullptr || plugin->loadFault == LoadFault::NoFile ||
              flags != LOAD_LIBRARY_AS_DATAFILE) {
              return nullptr;
          }
          return Load(path);
      }),
      load([this](const wchar_t* path) -> HMODULE {
          FakePlugin* const plugin = At(path);
          if (plugin == nullptr) {
              return load.CallOriginal(path);
          }
          CountErrorBoxes();
          return plugin->loadFault == LoadFault::NoLibrary ? nullptr : Load(path);
      }),
      loaded([this](const wchar_t* path) -> HMODULE {
          FakePlugin* const plugin = path == nullptr ? nullptr : At(path);
          if (plugin == nullptr) {
              return loaded.CallOriginal(path);
          }
          if (plugin->loads == 0) {
              return nullptr;
          }
          const HMODULE module = Load(path);
          --plugin->loads;
          return module;
      }),
      address([this](HMODULE module, const char* name) -> FARPROC {
          FakePlugin* const plugin = Of(module);
          if (plugin == nullptr) {
              return address.CallOriginal(module, name);
          }
          if (plugin->loadFault == LoadFault::NoEntry || std::strcmp(name, "FxPluginMain") != 0) {
              return nullptr;
          }
          const std::size_t index = reinterpret_cast<std::uintptr_t>(module) - 0x7000;
          return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(kEntries[index]));
      }),
      unload([this](HMODULE module) -> BOOL {
          FakePlugin* const plugin = Of(module);
          if (plugin == nullptr) {
              return unload.CallOriginal(module);
          }
          --plugin->loads;
          return TRUE;
      })
{
}

FakePlugin* FakePlugins::At(const wchar_t* path)
{
    for (FakePlugin& plugin : plugins) {
        if (_wcsicmp(plugin.path.c_str(), path) == 0) {
            return &plugin;
        }
    }
    return nullptr;
}

FakePlugin* FakePlugins::Of(HMODULE module)
{
    const std::size_t index = reinterpret_cast<std::uintptr_t>(module) - 0x7000;
    return index < kMostPlugins ? modules[index] : nullptr;
}

HMODULE FakePlugins::Load(const wchar_t* path)
{
    std::size_t index = 0;
    for (FakePlugin& plugin : plugins) {
        modules[index] = &plugin;
        if (&plugin == At(path)) {
            ++plugin.loads;
            return ModuleAt(index);
        }
        ++index;
    }
    return nullptr;
}

void FakePlugins::CountErrorBoxes()
{
    withErrorBoxes += (::GetErrorMode() & SEM_FAILCRITICALERRORS) == 0 ? 1 : 0;
}

} // namespace kestraboot::fuzz
