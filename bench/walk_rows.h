// The search of a card for media.
#pragma once

#include "bench/request.h"
#include "service/extension_set.h"

namespace kestraboot::bench
{

/// The formats of an application for pictures and films.
[[nodiscard]] ExtensionSet MediaExtensions();

/// No file matches; every entry is traced.
void CompeteInWalk(const Request& request);

/// The same with a trace that costs only the formatting of its text.
void CompeteInQuietWalk(const Request& request);

/// The first picture is in DCIM\100TEST.
void CompeteInSearch(const Request& request);

} // namespace kestraboot::bench
