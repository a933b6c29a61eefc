#pragma once

#include <string>
#include <vector>

namespace kestraboot::bench
{

/// One row's part of the command line.
struct Request {
    std::string row;
    std::string size; ///< in the row's own notation
    int rounds = 15;
    std::string card; ///< the Unix folder of the card; for rows that need one

    [[nodiscard]] int Number() const { return std::stoi(size); }
};

} // namespace kestraboot::bench
