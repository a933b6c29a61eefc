#include "tests/endurance/faults/sweep.h"

#include "tests/endurance/faults/expected_file.h"
#include "tests/endurance/faults/run_guard.h"
#include "tests/endurance/faults/run_scene.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace kestraboot::tests
{
namespace
{

std::string Describe(const Plan& plan, int occurrence)
{
    return std::string(plan.function) + ' ' + std::to_string(occurrence) + ": " + plan.failure->name;
}

int SweepCall(const Scene& scene, int number, const SweptCall& call, Outcomes& outcomes)
{
    if (call.failures.empty()) {
        return 0; // none applies to this one, such as to a question for the program itself
    }
    const std::size_t ofTheDay = (static_cast<std::size_t>(number) + FaultSeed()) % call.failures.size();
    int swept = 0;
    for (std::size_t i = 0; i < call.failures.size(); ++i) {
        if (!SweepsAll() && i != ofTheDay) {
            continue;
        }
        ++swept;
        const Failure* const failure = call.failures[i];
        Plan plan;
        plan.call = number;
        plan.function = call.function;
        plan.failure = failure;
        const std::string what = Describe(plan, call.occurrence);
        const RunGuard guard(scene.name + ": " + what);
        const std::string outcome = OutcomeOf(scene, plan);
        EXPECT_TRUE(PlanHappened() && !PlanMetAnotherCall())
            << scene.name << ": " << what << ": the calls are not the same in each run";
        CheckTable();
        CheckLeftBehind(scene, what, outcome);
        outcomes.Add(call, *failure, outcome);
    }
    return swept;
}

/// Checks that each leftover that a scene names exists.
void CheckKept(const Scene& scene, const std::string& usual)
{
    for (const Kept& kept : scene.kept) {
        EXPECT_TRUE(!kept.call.empty() || usual.find(kept.what) != std::string::npos)
            << scene.name << " no longer leaves behind: " << kept.what;
    }
}

} // namespace

void SweepFaults(const Scene& scene)
{
    WarmUp(scene);
    Outcomes outcomes;
    {
        const RunGuard guard(scene.name);
        const int allocations = AllocationsIn(scene);
        const std::string usual = OutcomeOf(scene, {});
        CheckLeftBehind(scene, {}, usual);
        CheckKept(scene, usual);
        outcomes.Begin(usual, allocations);
    }
    CheckTable();
    const std::vector<SweptCall> calls = SweptCalls();
    int failures = 0;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        failures += SweepCall(scene, static_cast<int>(i), calls[i], outcomes);
    }
    CheckExpectedFile(scene.name, outcomes, calls);
    std::printf("%s: %zu calls, %d failures swept, seed %zu\n", scene.name.c_str(), calls.size(),
                failures, FaultSeed());
}

} // namespace kestraboot::tests
