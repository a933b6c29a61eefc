// The first members of each JSON object of kestractl.
#pragma once

#include "tools/common/build.h"
#include "tools/ctl/json_schema_version.h"

#include <nlohmann/json.hpp>

namespace kestraboot::tools
{

inline nlohmann::ordered_json JsonHead(const char* type)
{
    const Build build = ThisBuild();
    return {{"type", type},
            {"schema", kJsonSchema},
            {"build",
             {{"version", build.version},
              {"commit", build.commit},
              {"compiler", build.compiler},
              {"runtime", build.runtime}}}};
}

} // namespace kestraboot::tools
