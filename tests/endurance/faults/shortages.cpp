// Memory that runs out, at one allocation after another.
#include "tests/endurance/faults/expected_file.h"
#include "tests/endurance/faults/journal.h"
#include "tests/endurance/faults/left_behind.h"
#include "tests/endurance/faults/run_guard.h"
#include "tests/endurance/faults/run_scene.h"
#include "tests/support/source_file.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <limits>

namespace kestraboot::tests
{
namespace
{

std::string Describe(const Plan& plan)
{
    return std::to_string(*plan.allocations) + " allocations work" +
           (plan.shortage == Shortage::Once ? ", then one fails" : "");
}

struct Afterwards {
    bool failed = false;
    std::string left;
};

/// Runs short of memory, then again with all of it: the same object then works as usual.
Afterwards RunTwice(const Scene& scene, const Plan& plan, const std::string& usual)
{
    const std::string what = scene.name + ", " + Describe(plan);
    Afterwards after;
    const Belongings before = LookAround(false);
    {
        const std::unique_ptr<Act> act = scene.make();
        act->Prepare();
        Journal::Clear();
        BeginRun(plan);
        RunOnFreshThread(*act);
        const std::string seen = Journal::Text(scene.folder);
        EXPECT_EQ(seen.find("THROWS"), std::string::npos) << what << '\n' << seen;
        EXPECT_TRUE(scene.throwsBadAlloc || seen.find("throws") == std::string::npos) << what << '\n'
                                                                                      << seen;
        CheckLeftBehind(scene, Describe(plan), seen);
        after.failed = PlanHappened();
        act->Prepare();
        Journal::Clear();
        BeginRun({});
        RunOnFreshThread(*act);
        act->ShowResults();
        EXPECT_EQ(Journal::Text(scene.folder), usual) << "the run after " << what;
    }
    after.left = LeftBehind(before, LookAround(true));
    return after;
}

bool FailsWith(const Scene& scene, const Plan& plan, const std::string& usual)
{
    const RunGuard guard(scene.name + ", " + Describe(plan));
    Afterwards after = RunTwice(scene, plan, usual);
    const bool failed = after.failed;
    // Only a leftover of every run counts, because Wine creates a handle of its own now and then.
    for (int again = 0; again < 2 && !after.left.empty(); ++again) {
        after.left = RunTwice(scene, plan, usual).left;
    }
    CheckLeftBehind(scene, Describe(plan), after.left);
    return failed;
}

} // namespace

int AllocationsIn(const Scene& scene)
{
    Plan counting; // none of them fails
    counting.allocations = std::numeric_limits<int>::max();
    static_cast<void>(OutcomeOf(scene, counting));
    return AllocationFailure::AskedFor();
}

void SweepAllocations(const Scene& scene)
{
    if (std::getenv("KESTRABOOT_REWRITE_EXPECTED") != nullptr) {
        return; // the file has the number already
    }
    WarmUp(scene);
    static_cast<void>(OutcomeOf(scene, {}));
    const std::string usual = Journal::Text(scene.folder);
    const int stride = SweepsAll() ? 1 : scene.days;
    const int first = static_cast<int>(FaultSeed() % static_cast<std::size_t>(stride));
    const int all = AllocationsIn(scene);
    CheckAllocations(scene.name, all);
    const int expected = first < all ? (all - first - 1) / stride + 1 : 0;
    int swept = 0;
    for (const Shortage shortage : {Shortage::Once, Shortage::FromThenOn}) {
        if (shortage == Shortage::FromThenOn && scene.waitsForMemory) {
            continue;
        }
        int failed = 0;
        for (int successes = first; FailsWith(scene, {-1, nullptr, nullptr, successes, shortage}, usual);
             successes += stride) {
            ++failed;
        }
        EXPECT_EQ(failed, expected) << scene.name << " allocates " << all << " times; failed were each "
                                    << stride << "th from " << first << " on";
        swept += failed;
    }
    std::printf("%s: %d shortages of memory swept, seed %zu\n", scene.name.c_str(), swept, FaultSeed());
}

} // namespace kestraboot::tests
