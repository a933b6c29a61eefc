// The build of these programs. Only this file is compiled again after a commit.
#pragma once

#include <string>

namespace kestraboot::tools
{

struct Build {
    const char* version;
    const char* commit;
    const char* compiler;
    const char* runtime;
};

[[nodiscard]] Build ThisBuild() noexcept;

/// The output of --version.
[[nodiscard]] std::string VersionAnswer(const char* program);

} // namespace kestraboot::tools
