// Why the library leaves a registered application out.
#pragma once

#include "tools/ctl/application_keys.h"

#include <string>
#include <vector>

namespace kestraboot::tools
{

struct Reason {
    const char* code;
    std::wstring text;
};

/// All that is wrong, not only the first thing; empty where nothing is.
[[nodiscard]] std::vector<Reason> WhyLeftOut(const ApplicationKey& key);

} // namespace kestraboot::tools
