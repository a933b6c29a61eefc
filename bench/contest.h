#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kestraboot::bench
{

/// One implementation of a row's work.
struct Side {
    std::string name;
    /// The allowed ratio of the library's time to the other side's; 0 if nothing is promised.
    double goal = 0;
    std::function<void()> work;
    /// Prepares one piece of work, outside the measured time. If it is set, each measurement is of one
    /// piece of work; otherwise of as many pieces as take a millisecond.
    std::function<void()> prepare = nullptr;
    int units = 1; ///< the number of things done in one piece of work; the time is that of one of them
};

/// The parts of a side's time.
enum class Time {
    OfEverything, ///< including the waits for Wine's server, for the disk and for other threads
    /// Nothing but computing: if it takes longer, another program had the processor or the caches. Of
    /// ten measurements in a row the shortest one counts.
    OfComputing,
};

/// Lets the sides work in turn, for `rounds` rounds and more while a round is quick, and writes each
/// measurement to standard output as a line of CSV: row, size, side, goal, round, nanoseconds for one
/// piece of work. Another side begins in each round. The first side of the list is the library.
void Compete(const std::string& row, const std::string& size, int rounds, const std::vector<Side>& sides,
             Time time = Time::OfEverything);

/// Measures the library alone, computing, for rows whose goal is a time: nanoseconds for one of the
/// `units` of a piece of work. It writes the same lines; the goal is the library's.
void Measure(const std::string& row, const std::string& size, int rounds, double goal, int units,
             const std::function<void()>& work);

} // namespace kestraboot::bench
