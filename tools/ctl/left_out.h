// The reasons why the library leaves a registered application out.
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

/// All reasons, not only the first; empty if there is none.
[[nodiscard]] std::vector<Reason> WhyLeftOut(const ApplicationKey& key);

} // namespace kestraboot::tools
