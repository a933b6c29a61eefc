#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kestraboot::bench
{

/// One way of doing a row's work.
struct Side {
    std::string name;
    /// How many times as long the library may take; 0 where nothing is promised.
    double goal = 0;
    std::function<void()> work;
    /// Makes ready for one piece of work, outside the time taken. Where it is set, each measurement is
    /// of one piece of work; otherwise of as many as take a millisecond.
    std::function<void()> prepare = nullptr;
    int units = 1; ///< so many things are done in one piece of work; the time is that of one of them
};

/// What a side's time consists of.
enum class Time {
    OfEverything, ///< waiting for Wine's server, for the disk, for other threads
    /// Nothing but computing: where it takes longer, another program had the processor or the caches. Of
    /// ten measurements in a row the shortest one counts.
    OfComputing,
};

/// Lets the sides work in turn, `rounds` times and more while that is quick, and writes each measurement
/// to standard output as a line of CSV: row, size, side, goal, round, nanoseconds for one piece of work.
/// The side that begins changes from round to round. The first side is the library.
void Compete(const std::string& row, const std::string& size, int rounds, const std::vector<Side>& sides,
             Time time = Time::OfEverything);

/// The library alone, computing, where the goal is a time: nanoseconds for one of the `units` that a
/// piece of work consists of. The same lines; the goal is the library's.
void Measure(const std::string& row, const std::string& size, int rounds, double goal, int units,
             const std::function<void()>& work);

} // namespace kestraboot::bench
