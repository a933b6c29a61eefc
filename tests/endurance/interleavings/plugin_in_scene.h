#pragma once

#include "kestraboot/mox_plugin.h"
#include "tests/endurance/interleavings/machine.h"

#include <string>

namespace kestraboot::interleavings
{

/// The end of a plugin's thread.
enum class EndsThread {
    AndWaits,         ///< in UnregisterCallback
    WithItsReference, ///< does not wait; the thread gives back a reference of its own
    Never,            ///< the fault: the thread goes on after the library was freed
};

/// A plugin whose library the machine has, and whose thread reports. No call may come while the library
/// is not loaded.
class PluginInScene final : public mox::IPluginDescriptor, public mox::ISourceManager
{
public:
    /// One of two: 0 is ".\moxplugins\nokiamanager.mox", 1 is ".\moxplugins\other.mox".
    PluginInScene(Machine& machine, int index, int reports, EndsThread ends = EndsThread::AndWaits);
    virtual ~PluginInScene() = default;

    bool Query(mox::InterfaceNumber number, void** object) override;
    std::uint32_t AddReference() override;
    std::uint32_t Release() override;
    mox::Status GetName(wchar_t* name, std::uint32_t capacity) override;
    mox::Status GetValue(std::uint32_t* value) override;
    mox::Status GetIdentifier(mox::Identifier* identifier) override;
    mox::Status SetListEntry(const mox::PluginDescriptor* entry) override;
    mox::Status ShutDown() override;
    mox::Status GetCategory(std::uint32_t* category) override;
    mox::Status RegisterCallback(mox::ICallbackInterface* callback) override;
    mox::Status UnregisterCallback(mox::ICallbackInterface* callback) override;

    [[nodiscard]] static const wchar_t* PathOf(int index);
    [[nodiscard]] static mox::Identifier IdentifierOf(int index);

    /// The device that its thread reports.
    [[nodiscard]] std::wstring DeviceOf(int report) const;

    int reported = 0; ///< the number of calls of the callback that have returned
    bool unregistered = false;

private:
    void MustBeLoaded(const char* operation) const;
    void Report();

    const int index;
    const int reports;
    const EndsThread ends;
    Library& library;
    mox::ICallbackInterface* callback = nullptr;
    int thread = -1;
    bool ending = false;
};

} // namespace kestraboot::interleavings
