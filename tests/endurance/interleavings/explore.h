#pragma once

#include "tests/endurance/interleavings/machine.h"

#include <gtest/gtest.h>

#include <cstdio>

namespace kestraboot::interleavings
{

/// Tries every schedule and prints their number. Every one must succeed.
template <typename SceneType>
void GoesWellInEverySchedule(int preemptions = PreemptionsAskedFor())
{
    const MachineInSlots slots;
    Scheduler scheduler(preemptions);
    const Outcome outcome = scheduler.Explore<SceneType>();
    EXPECT_EQ(outcome.failure, "") << "schedule " << outcome.schedules << ":\n" << outcome.schedule;
    EXPECT_GT(outcome.schedules, 1) << "the threads of the scene share nothing";
    std::printf("    %ld schedules with at most %d preemptions\n", outcome.schedules, preemptions);
}

/// Tries schedules until one fails.
template <typename SceneType>
[[nodiscard]] Outcome FindFailure(int preemptions)
{
    const MachineInSlots slots;
    Scheduler scheduler(preemptions);
    return scheduler.Explore<SceneType>();
}

} // namespace kestraboot::interleavings
