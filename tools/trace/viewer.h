// Shows the lines, or the verdicts on arrivals, on standard output and in the file.
#pragma once

#include "tools/common/standard_output.h"
#include "tools/trace/arrivals/arrival_verdicts.h"
#include "tools/trace/lines/log_file.h"
#include "tools/trace/lines/seen_line.h"
#include "tools/trace/lines/tag_filter.h"
#include "tools/trace/options.h"

#include <string>

namespace kestraboot::tools
{

class Viewer
{
public:
    /// `file` may be closed.
    Viewer(const TraceOptions& asked, LogFile file);

    void Take(const SeenLine& line);
    void TakeLost(const TimeStamp& time, std::uint64_t lines);

    /// To be called now and then while no line comes.
    void Tick(std::int64_t upMilliseconds);

    /// No more lines will come.
    void End();

    /// False when what it shows reaches neither standard output nor a file any more.
    [[nodiscard]] bool Useful() const noexcept { return !outputGone || log.IsOpen(); }

    /// Whether a line could not be written; standard error has said so.
    [[nodiscard]] bool Failed() const noexcept { return outputGone || log.Failed(); }

private:
    void Show(const Arrival& arrival);
    void Show(const TimeStamp& time, StyledText text);
    void ShowJson(std::string line);
    void Write(const StyledText& text);

    const TraceOptions options;
    const TagFilter filter;
    const StandardOutput output;
    LogFile log;
    ArrivalVerdicts verdicts;
    std::string day; ///< the one shown last
    bool outputGone = false;
};

} // namespace kestraboot::tools
