#pragma once

#include "tools/common/build.h"

#include <string>

namespace kestraboot::tools
{

/// The beginning of each object of kestractl.
inline std::string HeadJson(const std::string& type)
{
    const Build build = ThisBuild();
    return R"({"type":")" + type + R"(","schema":1,"build":{"version":")" + build.version +
           R"(","commit":")" + build.commit + R"(","compiler":")" + build.compiler + R"(","runtime":")" +
           build.runtime + R"("},)";
}

} // namespace kestraboot::tools
