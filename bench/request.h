#pragma once

#include <string>
#include <vector>

namespace kestraboot::bench
{

/// What the command line asks of one row.
struct Request {
    std::string row;
    std::string size; ///< as the row reads it
    int rounds = 15;
    std::string card; ///< the Unix folder that is the card; for rows that need one

    [[nodiscard]] int Number() const { return std::stoi(size); }
};

} // namespace kestraboot::bench
