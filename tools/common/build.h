// Which build these programs are. The one file of them that is compiled anew after a commit.
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

/// What a program answers to --version.
[[nodiscard]] std::string VersionAnswer(const char* program);

} // namespace kestraboot::tools
