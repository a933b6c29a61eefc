// One run of a scene, and what it left behind.
#pragma once

#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/sweep.h"

#include <string>

namespace kestraboot::tests
{

/// On a thread of its own, as a tracker runs: what belongs to the thread begins fresh.
void RunOnFreshThread(Act& act);

/// The first runs open what stays open in a process.
void WarmUp(const Scene& scene);

/// Runs the scene and answers the journal, with a line "LEFT BEHIND ..." for each thing that stayed.
/// What one run leaves and the next one does not is Windows' own.
[[nodiscard]] std::string OutcomeOf(const Scene& scene, const Plan& plan);

/// Fails the test for each thing that stayed although the scene does not name it. `call` is the one that
/// failed, such as "RegCloseKey 3: bad handle"; empty when none did.
void CheckLeftBehind(const Scene& scene, const std::string& call, const std::string& outcome);

/// How many blocks of memory the operation asks for when nothing fails.
[[nodiscard]] int AllocationsIn(const Scene& scene);

/// Fails the test for each function that the product calls and the table does not know.
void CheckTable();

/// Whether every failure and every allocation is swept, not only those of the day.
[[nodiscard]] bool SweepsAll();

/// What a run chooses by: KESTRABOOT_FAULT_SEED, or else the number of the day, so that seven days see
/// all that is rotated.
[[nodiscard]] std::size_t FaultSeed();

} // namespace kestraboot::tests
