#include "boot/console.h"

#include <windows.h>
#include <cstdio>

void JoinParentConsole() noexcept
{
    const HANDLE output = ::GetStdHandle(STD_OUTPUT_HANDLE);
    if (output != nullptr && output != INVALID_HANDLE_VALUE &&
        ::GetFileType(output) != FILE_TYPE_UNKNOWN) {
        return;
    }
    if (::AttachConsole(ATTACH_PARENT_PROCESS)) {
        // The library writes with the same C runtime, so this is its standard output too.
        static_cast<void>(std::freopen("CONOUT$", "w", stdout));
    }
}
