#include "bench/contest.h"

#include <algorithm>
#include <chrono>
#include <cstdio>

namespace kestraboot::bench
{
namespace
{

using Clock = std::chrono::steady_clock;
using Nanoseconds = std::chrono::duration<double, std::nano>;

constexpr Nanoseconds kSample = std::chrono::milliseconds(1);
constexpr Nanoseconds kQuick = std::chrono::milliseconds(2500);
constexpr int kMostRounds = 601;

Nanoseconds Time(const Side& side, long repetitions)
{
    if (side.prepare) {
        side.prepare();
    }
    const auto start = Clock::now();
    for (long i = 0; i < repetitions; ++i) {
        side.work();
    }
    return Clock::now() - start;
}

/// How often a side must work for one measurement. Also warms up what it uses.
long Repetitions(const Side& side)
{
    long repetitions = 1;
    Time(side, repetitions);
    while (!side.prepare && Time(side, repetitions) < kSample) {
        repetitions *= 2;
    }
    return repetitions;
}

} // namespace

void Compete(const std::string& row, const std::string& size, int rounds, const std::vector<Side>& sides)
{
    std::vector<long> repetitions;
    std::ranges::transform(sides, std::back_inserter(repetitions), Repetitions);
    const auto start = Clock::now();
    for (int round = 0; round < rounds || (Clock::now() - start < kQuick && round < kMostRounds);
         ++round) {
        for (std::size_t turn = 0; turn < sides.size(); ++turn) {
            const std::size_t i = (static_cast<std::size_t>(round) + turn) % sides.size();
            const double taken =
                Time(sides[i], repetitions[i]).count() / static_cast<double>(repetitions[i]);
            std::printf("%s,%s,%s,%g,%d,%.1f\n", row.c_str(), size.c_str(), sides[i].name.c_str(),
                        sides[i].goal, round, taken);
        }
    }
}

} // namespace kestraboot::bench
