// Device plugins inside the test's own process, each with its own fault.
#pragma once

#include "kestraboot/mox_plugin.h"
#include "tests/support/import_patch.h"

#include <list>
#include <string>

namespace kestraboot::fuzz
{

/// The place of a plugin's fault while it is loaded.
enum class LoadFault {
    None,
    NoFile,
    NoLibrary,
    NoEntry,
    MainThrows,
    NoObject,
    QueryThrows,
    NoInterface,
    TrueWithoutInterface,
    ValueThrows,
    IdentifierThrows,
    NameThrows,
    EntryThrows,
    WritesNothing,    ///< no fault: its fields stay zero
    UnterminatedName, ///< no fault either: the name is cut
    FailingStatuses,  ///< no fault either: no caller reads them
};

/// The place of its fault once it is loaded.
enum class SourceFault {
    None,
    NoManager,
    ManagerThrows,
    CategoryFails,
    CategoryThrows,
    RegisterFails,
    RegisterThrows,
    ShutDownThrows,
};

struct FakePlugin {
    std::wstring path;
    std::wstring name;
    std::uint32_t value = 0;
    std::uint32_t identifier = 0; ///< the first field; the others are zero
    std::uint32_t category = 0;
    LoadFault loadFault = LoadFault::None;
    SourceFault sourceFault = SourceFault::None;

    // The plugin's history.
    int loads = 0;   ///< of its library
    int objects = 0; ///< references that others hold
    int callbacks = 0;
    int shutDowns = 0;
    const mox::PluginDescriptor* entry = nullptr;
};

/// Lets the module under test load those plugins, by their paths, while it lives. One at a time.
class FakePlugins
{
public:
    FakePlugins();
    FakePlugins(const FakePlugins&) = delete;
    FakePlugins& operator=(const FakePlugins&) = delete;

    std::list<FakePlugin> plugins;

    /// Library calls that were made with error boxes enabled.
    int withErrorBoxes = 0;

private:
    FakePlugin* At(const wchar_t* path);
    static FakePlugin* Of(HMODULE module);
    HMODULE Load(const wchar_t* path);
    void CountErrorBoxes();

    FAKE_IMPORT(LoadLibraryExW) test;
    FAKE_IMPORT(LoadLibraryW) load;
    FAKE_IMPORT(GetModuleHandleW) loaded;
    FAKE_IMPORT(GetProcAddress) address;
    FAKE_IMPORT(FreeLibrary) unload;
};

} // namespace kestraboot::fuzz
