#pragma once

#include "tests/endurance/fuzz/launch_model.h"
#include "tests/endurance/fuzz/random.h"
#include "tests/support/import_patch.h"
#include "tests/support/spawn_recorder.h"
#include "tests/support/trace_recorder.h"

namespace kestraboot::fuzz
{

/// Steers Windows' answers about the machine and keeps the starts and traces.
class LaunchRecorder
{
public:
    LaunchRecorder();

    /// Before each case.
    void Reset(const Machine& runningOn);

    [[nodiscard]] Launched Seen() const { return {spawns.Calls(), trace.Lines()}; }

    Machine machine;
    tests::SpawnRecorder spawns;
    tests::TraceRecorder trace;

private:
    FAKE_IMPORT(GetVersionExW) version;
    FAKE_IMPORT(ProcessIdToSessionId) session;
};

/// Mostly one with a launch rule of its own.
[[nodiscard]] Machine AnyMachine(Random& random);

} // namespace kestraboot::fuzz
