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

/// The shortest time of a measurement, and the number of measurements of which the shortest one counts.
struct Sample {
    Nanoseconds length;
    int attempts;
};

constexpr Sample kEverything = {std::chrono::milliseconds(1), 1};
constexpr Sample kComputing = {std::chrono::microseconds(100), 10};
constexpr Nanoseconds kQuick = std::chrono::milliseconds(2500);
constexpr int kMostRounds = 601;

Nanoseconds Take(const Side& side, long repetitions)
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

/// The number of repetitions of a side's work in one measurement. Also warms up the side.
long Repetitions(const Side& side, Nanoseconds length)
{
    long repetitions = 1;
    Take(side, repetitions);
    while (!side.prepare && Take(side, repetitions) < length) {
        repetitions *= 2;
    }
    return repetitions;
}

} // namespace

void Compete(const std::string& row, const std::string& size, int rounds, const std::vector<Side>& sides,
             Time time)
{
    const Sample sample = time == Time::OfComputing ? kComputing : kEverything;
    std::vector<long> repetitions;
    std::ranges::transform(sides, std::back_inserter(repetitions), [&](const Side& side) {
        return Repetitions(side, sample.length);
    });
    const auto start = Clock::now();
    for (int round = 0; round < rounds || (Clock::now() - start < kQuick && round < kMostRounds);
         ++round) {
        for (std::size_t turn = 0; turn < sides.size(); ++turn) {
            const std::size_t i = (static_cast<std::size_t>(round) + turn) % sides.size();
            Nanoseconds taken = Take(sides[i], repetitions[i]);
            for (int attempt = 1; attempt < sample.attempts; ++attempt) {
                taken = std::min(taken, Take(sides[i], repetitions[i]));
            }
            const double things =
                static_cast<double>(repetitions[i]) * static_cast<double>(sides[i].units);
            std::printf("%s,%s,%s,%g,%d,%.2f\n", row.c_str(), size.c_str(), sides[i].name.c_str(),
                        sides[i].goal, round, taken.count() / things);
        }
    }
}

void Measure(const std::string& row, const std::string& size, int rounds, double goal, int units,
             const std::function<void()>& work)
{
    Compete(row, size, rounds, {{"library", goal, work, nullptr, units}}, Time::OfComputing);
}

} // namespace kestraboot::bench
