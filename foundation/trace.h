// The diagnostics of the system: single lines on the debugger output, a few texts on standard output.
//
// A fixed trace line goes straight to OutputDebugStringW. A line with a variable part is formatted into
// a zeroed TraceBuffer first; nothing is allocated. Conversions are "%ls" and "%lc", which every
// runtime's wide printf reads as wide text.
#pragma once

#include <cstddef>

namespace kestraboot
{

inline constexpr std::size_t kTraceCapacity = 260; ///< characters, the terminator included

using TraceBuffer = wchar_t[kTraceCapacity];

/// Formats into `buffer`, cut at 259 characters and always terminated. Returns the number of characters
/// written, or -1 and an empty buffer when formatting fails.
int FormatTraceLine(TraceBuffer& buffer, const wchar_t* format, ...) noexcept;

/// Formats to standard output. A missing console is no error.
void PrintConsole(const wchar_t* format, ...) noexcept;

} // namespace kestraboot
