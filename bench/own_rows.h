// The library's own time: memory answers the calls of Windows at once (instant_windows.h), so that the
// result depends neither on Wine nor on the disk.
#pragma once

#include "bench/request.h"

namespace kestraboot::bench
{

/// One file of a card's search without a result, including the formatting of its trace line.
void MeasureOwnWalk(const Request& request);

/// One application of a loaded list, and its product's key; it has 16 formats.
void MeasureOwnLoading(const Request& request);

/// One poll of 20 unchanged drives.
void MeasureOwnPoll(const Request& request);

} // namespace kestraboot::bench
