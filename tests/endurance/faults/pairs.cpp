// Two failing calls in one run.
#include "tests/endurance/faults/run_guard.h"
#include "tests/endurance/faults/run_scene.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>

namespace kestraboot::tests
{
namespace
{

class Sampler
{
public:
    Sampler(const Scene& swept, const std::vector<SweptCall>& made, unsigned seed)
        : scene(swept), calls(made), random(seed)
    {
    }

    /// False if the run did not reach a second failure.
    bool RunOne()
    {
        const auto number = Below(calls.size() - 1);
        const SweptCall& first = calls[number];
        if (first.failures.empty()) {
            return false; // none applies to this one
        }
        Plan plan;
        plan.call = static_cast<int>(number);
        plan.function = first.function;
        plan.failure = first.failures[Below(first.failures.size())];
        plan.secondAfter = 1 + static_cast<int>(Below(calls.size() - 1 - number));
        plan.secondChoice = static_cast<unsigned>(random());
        const std::string what = std::string(first.function) + ' ' + std::to_string(first.occurrence) +
                                 ": " + plan.failure->name + ", and the call " +
                                 std::to_string(plan.secondAfter) + " after it";
        const RunGuard guard(scene.name + ": " + what);
        const std::string outcome = OutcomeOf(scene, plan);
        const std::string second = SecondFailure();
        EXPECT_TRUE(PlanHappened() && !PlanMetAnotherCall())
            << scene.name << ": " << what << ": the calls are not the same in each run";
        EXPECT_EQ(outcome.find("THROWS"), std::string::npos) << what << ", " << second << '\n'
                                                             << outcome;
        EXPECT_TRUE(scene.throwsBadAlloc || outcome.find("throws") == std::string::npos)
            << what << ", " << second << '\n'
            << outcome;
        CheckLeftBehind(scene, what + ", " + second, outcome);
        return !second.empty();
    }

private:
    std::size_t Below(std::size_t count) { return random() % count; }

    const Scene& scene;
    const std::vector<SweptCall>& calls;
    std::mt19937_64 random;
};

} // namespace

void SweepPairs(const Scene& scene, int pairs)
{
    WarmUp(scene);
    const std::string usual = OutcomeOf(scene, {});
    const std::vector<SweptCall> calls = SweptCalls();
    ASSERT_GT(calls.size(), 1U) << scene.name << " makes fewer than two calls";
    const auto seed = static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed());
    Sampler sampler(scene, calls, seed);
    int met = 0;
    int runs = 0;
    for (; met < pairs && runs < 4 * pairs && !testing::Test::HasFailure(); ++runs) {
        met += sampler.RunOne() ? 1 : 0;
    }
    EXPECT_TRUE(met == pairs || testing::Test::HasFailure())
        << scene.name << ": only " << met << " of " << runs << " runs reached the second failure";
    CheckTable();
    EXPECT_EQ(OutcomeOf(scene, {}), usual) << scene.name << ": the run after all pairs";
    std::printf("%s: %d pairs of failures in %d runs; again: --gtest_random_seed=%u\n",
                scene.name.c_str(), met, runs, seed);
}

} // namespace kestraboot::tests
