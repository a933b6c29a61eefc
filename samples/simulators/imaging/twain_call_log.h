#pragma once

#include "trackers/still_image/twain.h"

#include <string>

namespace kestraboot::simulators
{

/// A call of the source manager, as it came in: opening gives the application an Id.
struct TwainCall {
    twain::TW_IDENTITY origin;
    bool hasDestination;
    twain::TW_UINT32 group;
    twain::TW_UINT16 argumentType;
    twain::TW_UINT16 message;
    const void* data;
};

/// Adds a line to "twain_calls.txt", if that file exists. `refusal`: the reason, or null.
void LogCall(const TwainCall& call, twain::TW_UINT16 result, const char* refusal);

} // namespace kestraboot::simulators
