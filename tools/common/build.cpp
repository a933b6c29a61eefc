#include "tools/common/build.h"

#include "kestraboot/build.h"
#include "kestraboot/version.h"

namespace kestraboot::tools
{

Build ThisBuild() noexcept
{
    return {KESTRABOOT_VERSION_TEXT, KESTRABOOT_BUILD_COMMIT, KESTRABOOT_BUILD_COMPILER,
            KESTRABOOT_BUILD_RUNTIME};
}

std::string VersionAnswer(const char* program)
{
    return program + std::string(" " KESTRABOOT_VERSION_TEXT "\n" KESTRABOOT_BUILD_TEXT);
}

} // namespace kestraboot::tools
