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

    /// The one that is asked for. False when it cannot be had; standard error has said so.
    [[nodiscard]] bool OpenFile();

    void Take(const SeenLine& line);
    void TakeLost(const TimeStamp& time, std::uint64_t lines);

    /// To be called now and then while no line comes.
    void Tick(std::int64_t upMilliseconds);

    /// What was taken so far is shown and written, where it was not yet.
    void Flush();

    /// No more lines will come. Failed when one could not be written.
    [[nodiscard]] ExitCode End();

    /// False when what it shows reaches neither standard output nor a file any more.
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
    bool outputGone = false; ///< and told
};

} // namespace kestraboot::tools
