#pragma once

#include "tests/endurance/fuzz/application_model.h"
#include "tests/endurance/fuzz/hive_registry.h"
#include "tests/endurance/fuzz/launch_recorder.h"
#include "tests/support/fake_modules.h"
#include "tests/support/registry_sandbox.h"

#include <shlwapi.h>

namespace kestraboot::fuzz
{

enum class Keys { Real, InMemory };

/// Replaces this machine by worlds, one after another: the registry, files and the running executable as
/// Windows would report them. An end of the process is thrown as ProcessEnded.
class SteeredWorld
{
public:
    explicit SteeredWorld(Keys keys);

    void Become(const World& wanted, const Machine& runningOn);

    /// The current stored content, a line each.
    [[nodiscard]] std::vector<std::wstring> MachineLines() const;
    [[nodiscard]] std::vector<std::wstring> UserLines() const;

    /// Keys that were opened and not closed, if they are in memory.
    [[nodiscard]] std::size_t OpenKeys() const { return registry ? registry->OpenKeys() : 0; }

    LaunchRecorder recorder;

private:
    const World* world = nullptr;
    std::optional<tests::RegistrySandbox> sandbox; ///< either this
    std::optional<HiveRegistry> registry;          ///< or this
    FAKE_IMPORT(PathFileExistsW) exists;
    tests::FakeModuleList modules;
    tests::FakeModuleName moduleName;
    FAKE_IMPORT(ExitProcess) exit;
};

} // namespace kestraboot::fuzz
