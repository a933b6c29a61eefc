// The command line of kestratrace.
#pragma once

#include "tools/trace/lines/line_filter.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestraboot::tools
{

struct TraceOptions {
    bool help = false;
    bool version = false;
    bool arrivals = false;
    bool json = false;
    bool colour = true;
    Wanted wanted;
    std::wstring file;              ///< empty: none
    std::uint64_t rotate = 0;       ///< bytes of `file`; 0: unlimited
    unsigned keep = 5;              ///< the number of earlier files
    std::vector<std::wstring> from; ///< recordings to show instead of the debug output
    std::uint64_t seconds = 0;      ///< 0: until it is stopped
};

/// `words` without the program itself. If they are not understood: nothing, and the reason in
/// `wrong`.
[[nodiscard]] std::optional<TraceOptions> ParseTraceOptions(const std::vector<std::wstring>& words,
                                                            std::string& wrong);

/// The usage, in two lines.
[[nodiscard]] const char* TraceUsage() noexcept;
[[nodiscard]] std::string TraceHelp();

} // namespace kestraboot::tools
