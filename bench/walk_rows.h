// The search of a card for media.
#pragma once

#include "bench/request.h"
#include "service/extension_set.h"

namespace kestraboot::bench
{

/// What an application for pictures and films registers.
[[nodiscard]] ExtensionSet MediaExtensions();

/// No file matches; every entry is traced.
void CompeteInWalk(const Request& request);

/// The same where the trace costs nothing but its text.
void CompeteInQuietWalk(const Request& request);

/// The first picture lies in DCIM\100TEST.
void CompeteInSearch(const Request& request);

} // namespace kestraboot::bench
