// The library's own time: Windows' calls are answered at once (instant_windows.h), so that what is
// measured depends neither on Wine nor on the disk.
#pragma once

#include "bench/request.h"

namespace kestraboot::bench
{

/// One file of a card's search that finds nothing, its trace line formatted.
void MeasureOwnWalk(const Request& request);

/// One application of a list that is loaded, and its product's key; it has 16 formats.
void MeasureOwnLoading(const Request& request);

/// One look at 20 drives at which nothing has changed.
void MeasureOwnPoll(const Request& request);

} // namespace kestraboot::bench
