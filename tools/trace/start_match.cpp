#include "tools/trace/start_match.h"

namespace kestraboot::tools
{

bool Names(const StartLine& start, const Arrival& arrival)
{
    const bool sameKind = start.kind == arrival.kind || start.kind.empty();
    const bool sameDevice =
        arrival.deviceCut ? start.device.starts_with(arrival.device) : start.device == arrival.device;
    return sameKind && sameDevice;
}

} // namespace kestraboot::tools
