#include "foundation/trace.h"

#include <cstdarg>
#include <cstdio>
#include <cwchar>

namespace kestraboot
{

int FormatTraceLine(TraceBuffer& buffer, const wchar_t* format, ...) noexcept
{
    constexpr int kMostCharacters = static_cast<int>(kTraceCapacity) - 1;

    std::va_list arguments;
    va_start(arguments, format);
    int written = _vsnwprintf(buffer, kMostCharacters, format, arguments);
    va_end(arguments);

    if (written < 0) {
        // The runtime answers -1 both for a line that was cut and for one that it could not format.
        va_start(arguments, format);
        const bool cut = _vscwprintf(format, arguments) > kMostCharacters;
        va_end(arguments);
        written = cut ? kMostCharacters : -1;
    }
    buffer[written < 0 ? 0 : written] = L'\0';
    return written;
}

void PrintConsole(const wchar_t* format, ...) noexcept
{
    std::va_list arguments;
    va_start(arguments, format);
    // Standard output may be closed: a program that is started at log-on has no console.
    if (std::vfwprintf(stdout, format, arguments) >= 0) {
        std::fflush(stdout);
    }
    va_end(arguments);
}

} // namespace kestraboot
