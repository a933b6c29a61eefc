// What the lines of a search for media make of the volume that is searched.
#pragma once

#include "tools/trace/arrivals/arrival.h"
#include "tools/trace/arrivals/trace_event.h"

namespace kestraboot::tools
{

/// What one line leaves for the next.
struct VolumeSearch {
    bool attemptOver = false;
    bool searchOff = false;
    bool unfit = false;
};

/// Counts, and decides where the line does.
void TakeSearchLine(VolumeSearch& search, Arrival& volume, const TraceEvent& event);

} // namespace kestraboot::tools
