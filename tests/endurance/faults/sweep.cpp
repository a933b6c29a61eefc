#include "tests/endurance/faults/sweep.h"

#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/expected_file.h"
#include "tests/endurance/faults/journal.h"
#include "tests/endurance/faults/left_behind.h"
#include "tests/endurance/faults/run_guard.h"
#include "tests/support/process_end.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <thread>

namespace kestraboot::tests
{
namespace
{

/// On a thread of its own, as a tracker runs: what belongs to the thread begins fresh.
void RunOnFreshThread(Act& act)
{
    std::thread([&act] {
        try {
            act.Run();
        } catch (const ProcessEnded&) {
            // The journal says so.
        } catch (const std::bad_alloc&) {
            Journal::Add(L"throws std::bad_alloc");
        } catch (const std::exception& other) {
            Journal::Add(L"THROWS ANOTHER EXCEPTION");
        }
    }).join();
}

/// By default each call fails in one of its ways, and memory runs out at each seventh allocation.
bool SweepsAll()
{
    static const bool all = std::getenv("KESTRABOOT_ALL_FAULTS") != nullptr ||
                            std::getenv("KESTRABOOT_REWRITE_EXPECTED") != nullptr;
    return all;
}

std::string LeftByOneRun(const Scene& scene, const Plan& plan)
{
    const Belongings before = LookAround(false);
    {
        const std::unique_ptr<Act> act = scene.make();
        act->Prepare();
        Journal::Clear();
        BeginRun(plan);
        RunOnFreshThread(*act);
        act->ShowResults();
    }
    return LeftBehind(before, LookAround(true), scene.keepsMemory);
}

/// Runs the scene; the journal then has what became of it. Answers what it left behind: what one run
/// leaves and the next one does not is Windows' own.
std::string Leftovers(const Scene& scene, const Plan& plan)
{
    std::string left = LeftByOneRun(scene, plan);
    for (int again = 0; again < 2 && !left.empty(); ++again) {
        left = LeftByOneRun(scene, plan);
    }
    return left;
}

std::string Describe(const Plan& plan, int occurrence)
{
    return std::string(plan.function) + ' ' + std::to_string(occurrence) + ": " + plan.failure->name;
}

void CheckTable()
{
    for (const char* const function : UnknownFunctions()) {
        ADD_FAILURE() << "the product calls " << function
                      << ", which the sweep does not know: add its failures to FailureTable() in "
                         "failure_table.cpp, or its name to kCannotFail there";
    }
}

int SweepCall(const Scene& scene, int number, const SweptCall& call, Outcomes& outcomes)
{
    int swept = 0;
    for (std::size_t i = 0; i < call.failures.size(); ++i) {
        if (!SweepsAll() && i != static_cast<std::size_t>(number) % call.failures.size()) {
            continue;
        }
        ++swept;
        const Failure* const failure = call.failures[i];
        const Plan plan = {number, call.function, failure, {}, {}};
        const std::string what = Describe(plan, call.occurrence);
        const RunGuard guard(scene.name + ": " + what);
        const std::string left = Leftovers(scene, plan);
        EXPECT_TRUE(PlanHappened() && !PlanMetAnotherCall())
            << scene.name << ": " << what << ": the calls are not the same in each run";
        CheckTable();
        outcomes.Add(call, *failure,
                     Journal::Text(scene.folder) + (left.empty() ? "" : "LEFT BEHIND " + left + '\n'));
    }
    return swept;
}

/// The first runs open what stays open in a process.
void WarmUp(const Scene& scene)
{
    for (int run = 0; run < 2; ++run) {
        static_cast<void>(LeftByOneRun(scene, {}));
    }
}

bool CheckAfterShortage(const Scene& scene, const Plan& plan, const std::string& expected)
{
    const std::string what = scene.name + ", " + std::to_string(*plan.allocations) +
                             " allocations work" +
                             (plan.shortage == Shortage::Once ? ", then one fails" : "");
    const RunGuard guard(what);
    const auto run = [&] {
        const Belongings before = LookAround(false);
        bool failed = false;
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
            failed = PlanHappened();
            act->Prepare();
            Journal::Clear();
            BeginRun({});
            RunOnFreshThread(*act);
            act->ShowResults();
            EXPECT_EQ(Journal::Text(scene.folder), expected) << "the run after " << what;
        }
        return std::pair(failed, LeftBehind(before, LookAround(true), scene.keepsMemory));
    };
    auto [failed, left] = run();
    for (int again = 0; again < 2 && failed && !left.empty(); ++again) {
        left = run().second;
    }
    EXPECT_EQ(left, "") << what;
    return failed;
}

} // namespace

void SweepFaults(const Scene& scene)
{
    WarmUp(scene);
    Outcomes outcomes;
    {
        const RunGuard guard(scene.name);
        const std::string left = Leftovers(scene, {});
        EXPECT_EQ(left, "") << scene.name << " leaves something behind when nothing fails";
        outcomes.Begin(Journal::Text(scene.folder));
    }
    CheckTable();
    const std::vector<SweptCall> calls = SweptCalls();
    int failures = 0;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        failures += SweepCall(scene, static_cast<int>(i), calls[i], outcomes);
    }
    CheckExpectedFile(scene.name, outcomes, SweepsAll());
    std::printf("%s: %zu calls, %d failures swept\n", scene.name.c_str(), calls.size(), failures);
}

void SweepAllocations(const Scene& scene)
{
    WarmUp(scene);
    static_cast<void>(LeftByOneRun(scene, {}));
    const std::string expected = Journal::Text(scene.folder);
    int swept = 0;
    for (const Shortage shortage : {Shortage::Once, Shortage::FromThenOn}) {
        if (shortage == Shortage::FromThenOn && scene.waitsForMemory) {
            continue;
        }
        for (int successes = 0;; successes += SweepsAll() ? 1 : 7) {
            const Plan plan = {-1, nullptr, nullptr, successes, shortage};
            if (!CheckAfterShortage(scene, plan, expected)) {
                break;
            }
            ++swept;
        }
    }
    std::printf("%s: %d shortages of memory swept\n", scene.name.c_str(), swept);
}

} // namespace kestraboot::tests
