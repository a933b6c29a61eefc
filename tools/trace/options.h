// What kestratrace is asked to do.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kestraboot::tools
{

struct TraceOptions {
    bool help = false;
    bool arrivals = false;
    bool json = false;
    bool colour = true;
    std::vector<std::string> only; ///< tags; all lines where it is empty
    std::wstring file;             ///< empty: none
    std::uint64_t seconds = 0;     ///< 0: until it is stopped
};

/// `words` without the program itself. Nothing, and the reason in `wrong`, where they are not
/// understood.
[[nodiscard]] std::optional<TraceOptions> ParseTraceOptions(const std::vector<std::wstring>& words,
                                                            std::string& wrong);

[[nodiscard]] const char* TraceUsage() noexcept;

} // namespace kestraboot::tools
