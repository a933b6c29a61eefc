#include "tools/trace/start_match.h"

namespace kestraboot::tools
{

namespace
{

bool FitsKind(const StartLine& start, const std::string& kind)
{
    if (start.kindGuessed) {
        return kind != "volume" && kind != "scanner";
    }
    return start.kind == kind || start.kind.empty();
}

} // namespace

bool Names(const StartLine& start, const Arrival& arrival)
{
    const bool sameDevice =
        arrival.deviceCut ? start.device.starts_with(arrival.device) : start.device == arrival.device;
    return FitsKind(start, arrival.kind) && sameDevice;
}

} // namespace kestraboot::tools
