// Replacements of calls of Windows whose cost is not measured.
#pragma once

#include <windows.h>
#include <cstdint>

namespace kestraboot::bench
{

/// For `_wspawnlp`: fails, as if the file did not exist.
inline std::intptr_t StartNothing(int, const wchar_t*, const wchar_t*, ...) noexcept
{
    return -1;
}

/// For `OutputDebugStringW`.
inline void WINAPI DropLine(const wchar_t*) noexcept {}

} // namespace kestraboot::bench
