#pragma once

#include "tests/endurance/fuzz/application_model.h"
#include "tests/endurance/fuzz/launch_recorder.h"
#include "tests/support/registry_sandbox.h"

#include <psapi.h>
#include <shlwapi.h>

namespace kestraboot::fuzz
{

/// Puts worlds in the place of this machine, one after another: the registry for real, files and the
/// running executable as Windows would tell. An end of the process is thrown as ProcessEnded.
class SteeredWorld
{
public:
    SteeredWorld();

    void Become(const World& wanted, const Machine& runningOn);

    LaunchRecorder recorder;

private:
    const World* world = nullptr;
    tests::RegistrySandbox sandbox;
    FAKE_IMPORT(PathFileExistsW) exists;
    FAKE_IMPORT(K32GetModuleFileNameExW) moduleName;
    FAKE_IMPORT(ExitProcess) exit;
};

} // namespace kestraboot::fuzz
