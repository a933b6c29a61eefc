#include "version.h"

#include "kestraboot/build.h"
#include "kestraboot/version.h"

#include <cstdio>
#include <cstring>

namespace kestraboot::simulators
{

void PrintVersion(const char* program)
{
    std::printf("%s " KESTRABOOT_VERSION_TEXT "\n" KESTRABOOT_BUILD_TEXT, program);
}

bool AnsweredVersion(const char* program, int count, const char* const* words)
{
    const bool asked = count > 1 && std::strcmp(words[1], "--version") == 0;
    if (asked) {
        PrintVersion(program);
    }
    return asked;
}

} // namespace kestraboot::simulators
