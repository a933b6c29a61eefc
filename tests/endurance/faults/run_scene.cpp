#include "tests/endurance/faults/run_scene.h"

#include "tests/endurance/faults/journal.h"
#include "tests/endurance/faults/left_behind.h"
#include "tests/endurance/faults/run_guard.h"
#include "tests/support/process_end.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <exception>
#include <new>
#include <sstream>
#include <thread>
#include <tuple>

namespace kestraboot::tests
{
namespace
{

struct OneRun {
    std::string seen;
    std::string left;
};

OneRun RunOnce(const Scene& scene, const Plan& plan)
{
    OneRun run;
    const Belongings before = LookAround(false);
    {
        const std::unique_ptr<Act> act = scene.make();
        act->Prepare();
        Journal::Clear();
        BeginRun(plan);
        RunOnFreshThread(*act);
        act->ShowResults();
    }
    const Belongings after = LookAround(true); // before anything here takes memory
    run.seen = Journal::Text(scene.folder);
    run.left = LeftBehind(before, after);
    return run;
}

bool IsKept(const Scene& scene, const std::string& call, const std::string& thing)
{
    return std::ranges::any_of(scene.kept, [&](const Kept& kept) {
        return thing == kept.what && call.find(kept.call) != std::string::npos;
    });
}

} // namespace

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

void WarmUp(const Scene& scene)
{
    // Its thread, which begins with the first guard, does not count as a leftover of a run then.
    const RunGuard guard(scene.name + ", the first runs");
    for (int run = 0; run < 2; ++run) {
        static_cast<void>(RunOnce(scene, {}));
    }
}

std::string OutcomeOf(const Scene& scene, const Plan& plan)
{
    OneRun run = RunOnce(scene, plan);
    // Only a leftover of every run counts, because Wine creates a handle of its own now and then: the
    // fewest lines, and of as many lines the smaller count.
    const auto order = [](const std::string& left) {
        return std::tuple(left.size(), left);
    };
    for (int again = 0; again < 2 && !run.left.empty(); ++again) {
        OneRun other = RunOnce(scene, plan);
        if (order(other.left) < order(run.left)) {
            run = std::move(other);
        }
    }
    return run.seen + run.left;
}

void CheckLeftBehind(const Scene& scene, const std::string& call, const std::string& outcome)
{
    std::istringstream lines(outcome);
    for (std::string line; std::getline(lines, line);) {
        const std::string mark = kLeftBehind;
        if (line.starts_with(mark) && !IsKept(scene, call, line.substr(mark.size()))) {
            ADD_FAILURE() << scene.name << (call.empty() ? ", when nothing fails" : ", " + call)
                          << ", leaves behind: " << line.substr(mark.size());
        }
    }
}

void CheckTable()
{
    for (const char* const function : UnknownFunctions()) {
        ADD_FAILURE() << "the product calls " << function
                      << ", which is not in the failure table: add its failures to FailureTable() in "
                         "failure_table.cpp, or its name to kCannotFail there";
    }
}

bool SweepsAll()
{
    return std::getenv("KESTRABOOT_ALL_FAULTS") != nullptr ||
           std::getenv("KESTRABOOT_REWRITE_EXPECTED") != nullptr;
}

std::size_t FaultSeed()
{
    if (const char* const asked = std::getenv("KESTRABOOT_FAULT_SEED")) {
        return std::strtoul(asked, nullptr, 10);
    }
    constexpr std::time_t kSecondsOfADay = 24 * 60 * 60;
    return static_cast<std::size_t>(std::time(nullptr) / kSecondsOfADay);
}

} // namespace kestraboot::tests
