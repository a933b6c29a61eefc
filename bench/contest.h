#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kestraboot::bench
{

/// One way of doing a row's work.
struct Side {
    std::string name;
    double goal = 0; ///< how many times as long the library may take; 0 where nothing is promised
    std::function<void()> work;
    /// Makes ready for one piece of work, outside the time taken. Where it is set, each measurement is
    /// of one piece of work; otherwise of as many as take a millisecond.
    std::function<void()> prepare = nullptr;
};

/// Lets the sides work in turn, `rounds` times and more while that is quick, and writes each measurement
/// to standard output as a line of CSV: row, size, side, goal, round, nanoseconds for one piece of work.
/// The side that begins changes from round to round. The first side is the library.
void Compete(const std::string& row, const std::string& size, int rounds,
             const std::vector<Side>& sides);

} // namespace kestraboot::bench
