// One run of a scene, and its leftovers.
#pragma once

#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/sweep.h"

#include <string>

namespace kestraboot::tests
{

/// Runs on a new thread, as a tracker does, so that the state of the thread is fresh.
void RunOnFreshThread(Act& act);

/// The first runs open the objects that stay open in a process.
void WarmUp(const Scene& scene);

/// Runs the scene and returns the journal, with a line "LEFT BEHIND ..." for each leftover. A leftover
/// of one run that the next run does not have is Windows' own.
[[nodiscard]] std::string OutcomeOf(const Scene& scene, const Plan& plan);

/// Fails the test for each leftover that the scene does not name. `call` is the failing call, such as
/// "RegCloseKey 3: bad handle"; empty if none failed.
void CheckLeftBehind(const Scene& scene, const std::string& call, const std::string& outcome);

/// The number of the operation's allocations without a failure.
[[nodiscard]] int AllocationsIn(const Scene& scene);

/// Fails the test for each function that the product calls and the table does not know.
void CheckTable();

/// Whether every failure and every allocation is swept, or only those of the day.
[[nodiscard]] bool SweepsAll();

/// The number that chooses the failures: KESTRABOOT_FAULT_SEED, or else the number of the day, so that
/// seven days cover the whole rotation.
[[nodiscard]] std::size_t FaultSeed();

} // namespace kestraboot::tests
