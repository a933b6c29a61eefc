#pragma once

#include "tests/endurance/fuzz/control_model.h"
#include "tests/endurance/fuzz/hive_registry.h"
#include "tests/endurance/fuzz/launch_recorder.h"
#include "tests/support/fake_modules.h"

namespace kestraboot::fuzz
{

/// Lets a process that runs from anywhere take control, with a claim that no other process sees.
class SteeredControl
{
public:
    SteeredControl();

    void Become(const Surroundings& wanted);
    [[nodiscard]] Control Take();

    Surroundings surroundings;
    std::wstring folder; ///< the folder that was made current, if that is steered

private:
    HANDLE Claim() const;

    bool closed = false;
    HiveRegistry registry;
    LaunchRecorder recorder;
    FAKE_IMPORT(CreateMutexW) mutex;
    FAKE_IMPORT(CloseHandle) close;
    tests::FakeModuleList modules;
    tests::FakeModuleName moduleName;
};

} // namespace kestraboot::fuzz
