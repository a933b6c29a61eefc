#pragma once

#include <windows.h>

#include <ostream>

namespace kestraboot::tests
{

/// The resources of a process at one moment.
struct ResourceUse {
    long handles = 0;
    long threads = 0;
    long windows = 0;     ///< top-level ones
    long gdiObjects = 0;  ///< Windows' count; Wine returns 0
    long userObjects = 0; ///< the same
    long long privateBytes = 0;
};

[[nodiscard]] ResourceUse ResourceUseOf(HANDLE process);

std::ostream& operator<<(std::ostream& out, const ResourceUse& use);

} // namespace kestraboot::tests
