// Shows the lines, or the verdicts on arrivals, on standard output and in the file.
#pragma once

#include "tools/common/exit_code.h"
#include "tools/common/standard_output.h"
#include "tools/trace/arrivals/arrival_verdicts.h"
#include "tools/trace/lines/line_filter.h"
#include "tools/trace/lines/log_file.h"
#include "tools/trace/lines/seen_line.h"
#include "tools/trace/options.h"

#include <string>
#include <vector>

namespace kestraboot::tools
{

class Viewer
{
public:
    explicit Viewer(const TraceOptions& asked);

    /// Opens the requested file. False if it cannot be opened; standard error has the reason.
    [[nodiscard]] bool OpenFile();

    void Take(const SeenLine& line);
    void TakeLost(const TimeStamp& time, std::uint64_t lines);

    /// Call it now and then while no line comes.
    void Tick(std::int64_t upMilliseconds);

    /// Shows and writes everything that was taken so far and is still pending.
    void Flush();

    /// No more lines will come. Failed if one could not be written.
    [[nodiscard]] ExitCode End();

    /// False if its output reaches neither standard output nor a file any more.
    [[nodiscard]] bool Useful() const noexcept { return !outputGone || log.IsOpen(); }

private:
    [[nodiscard]] bool Passes(const Arrival& arrival, const std::vector<StyledText>& lines) const;
    void Show(const Arrival& arrival);
    void Show(const TimeStamp& time, StyledText text);
    void ShowJson(std::string line);
    void Write(const StyledText& text);

    const TraceOptions options;
    const LineFilter filter;
    const StandardOutput output;
    LogFile log;
    ArrivalVerdicts verdicts;
    std::string day;       ///< the one shown last
    std::string forOutput; ///< what is still to be written there
    std::string forFile;
    bool consoleGone = false;
    bool outputGone = false; ///< and reported
};

} // namespace kestraboot::tools
