#pragma once

#include <string>

namespace kestraboot::bench
{

/// The objects on the road from a card to an application.
struct Road {
    std::wstring drive;          ///< "E:"
    std::wstring applicationKey; ///< of the only, default, application, whose proxy is this program
    std::wstring proxyPath;
    std::wstring commandPath;
};

/// The calls of that road, from the scan that detects the card to the started application.
void TravelRoad(const Road& road);

} // namespace kestraboot::bench
