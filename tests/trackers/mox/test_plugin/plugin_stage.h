// The interface between the test plugin and the program that loads it. The program sets the behaviour of
// each copy of the plugin and gets all its events. In a program without a stage the plugins behave
// plainly.
#pragma once

#include "kestraboot/mox_plugin.h"

#include <cstdint>
#include <functional>
#include <string>

namespace kestraboot::tests
{

/// The host's operations on a plugin. The number is the position in the interface, if it has one.
enum class Operation {
    None,
    Main,            ///< FxPluginMain
    QueryDescriptor, ///< the first object is asked for interface 1
    QuerySource,     ///< the first object is asked for interface 13
    QueryOther,      ///< any other query
    GetName,
    GetValue,
    GetIdentifier,
    SetListEntry,
    ShutDown,
    QueryCategory, ///< the source manager is asked for interface 13
    GetCategory,
    Register,
    Unregister,
    ReleaseDescriptor, ///< a release of the first object, or of its interface 1
    ReleaseSource,
    Reserved, ///< an operation that the host never calls
};

/// The behaviour of one copy of the plugin.
struct Behaviour {
    Operation throws = Operation::None; ///< throws an exception of the plugin's own type
    Operation fails = Operation::None;  ///< returns nothing: null, false, or kFailure
    Operation silent = Operation::None; ///< returns success and writes nothing
    /// Whether it returns nothing this time.
    std::function<bool(Operation)> failsNow = {};
    std::uint32_t category = 1;
    std::uint32_t value = 7;
    std::wstring name = {};             ///< written unchanged, at any length; empty: the file's name
    bool nameWithoutTerminator = false; ///< 260 characters without a zero
    const mox::Identifier* identifier = nullptr; ///< null: made from the file's name
    /// Runs in the operation, on the host's thread.
    std::function<void(Operation)> during = {};
    /// Runs in Register, with the callback.
    std::function<void(mox::ICallbackInterface*)> onRegister = {};
};

class PluginStage
{
public:
    virtual Behaviour BehaviourOf(const std::wstring& plugin) = 0;
    virtual void Happened(const std::wstring& plugin, Operation operation) = 0;
    /// A reference to an object of the plugin was added (1) or released (-1).
    virtual void CountReference(const std::wstring& plugin, int change) = 0;
    virtual void TakeEntry(const std::wstring& plugin, const mox::PluginDescriptor* entry) = 0;

protected:
    ~PluginStage() = default;
};

/// The program exports the function that returns its stage under this name.
inline constexpr const char* kStageFunction = "KestrabootPluginStage";
using StageFunction = PluginStage* (*)();

} // namespace kestraboot::tests
