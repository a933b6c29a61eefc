// Reads the lines of a scan for media into the verdict on its volume.
#pragma once

#include "tools/trace/arrivals/arrival.h"
#include "tools/trace/arrivals/trace_event.h"

namespace kestraboot::tools
{

/// The state between two lines.
struct VolumeSearch {
    bool attemptOver = false;
    bool searchOff = false;
    bool unfit = false;
};

/// Counts, and decides if the line does.
void TakeSearchLine(VolumeSearch& search, Arrival& volume, const TraceEvent& event);

} // namespace kestraboot::tools
