#include "tools/trace/viewer.h"

#include "tools/common/utf8.h"
#include "tools/trace/arrivals/arrival_format.h"
#include "tools/trace/lines/line_format.h"
#include "tools/trace/system_error.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace kestraboot::tools
{
namespace
{

constexpr std::size_t kMostUnwritten = 65'536; // bytes

} // namespace

Viewer::Viewer(const TraceOptions& asked)
    : options(asked), filter(asked.wanted), output(asked.colour),
      verdicts([this](const Arrival& arrival) {
          Show(arrival);
      })
{
}

bool Viewer::OpenFile()
{
    if (options.file.empty() || log.Open(options.file, {options.rotate, options.keep})) {
        return true;
    }
    TellSystemError("open " + ToUtf8(options.file));
    return false;
}

void Viewer::Take(const SeenLine& seen)
{
    if (options.arrivals) {
        Tick(seen.time.upMilliseconds); // the line's time: a recording gives the same verdicts
        verdicts.Take(seen);
        return;
    }
    const TraceLine line = ParseTraceLine(seen.text);
    if (!filter.PassesProcess(seen.processId, seen.processName) || !filter.PassesTags(line) ||
        !filter.PassesText(line.text)) {
        return;
    }
    if (options.json) {
        ShowJson(LineJson(seen, line));
    } else {
        Show(seen.time, FormatLine(seen, line));
    }
}

void Viewer::TakeLost(const TimeStamp& time, std::uint64_t lines)
{
    if (options.json) {
        ShowJson(LostJson(time, lines));
    } else {
        Show(time, FormatLost(time, lines));
    }
}

void Viewer::Tick(std::int64_t upMilliseconds)
{
    verdicts.Tick(upMilliseconds);
}

ExitCode Viewer::End()
{
    verdicts.End();
    Flush();
    return outputGone || log.Failed() ? ExitCode::Failed : ExitCode::Done;
}

bool Viewer::Passes(const Arrival& arrival, const std::vector<StyledText>& lines) const
{
    return filter.PassesProcess(arrival.processId, arrival.processName) &&
           filter.PassesTags(arrival.tracker.empty() ? "KestraBoot" : "DeviceConnect", arrival.tracker,
                             arrival.plugins) &&
           std::ranges::any_of(lines, [&](const StyledText& line) {
               return filter.PassesText(PlainText(line));
           });
}

void Viewer::Show(const Arrival& arrival)
{
    std::vector<StyledText> lines = FormatArrival(arrival);
    if (!Passes(arrival, lines)) {
        return;
    }
    if (options.json) {
        ShowJson(ArrivalJson(arrival));
        return;
    }
    for (StyledText& line : lines) {
        Show(arrival.noticed, std::move(line));
    }
}

void Viewer::Show(const TimeStamp& time, StyledText text)
{
    std::string today = DayText(time);
    if (today != day) {
        day = std::move(today);
        const std::string heading = "-- " + day + "\r\n";
        Flush();
        log.SetHeading(heading);
        Write({{Style::Faint, heading}});
    }
    text.push_back({Style::Plain, "\r\n"});
    Write(text);
}

void Viewer::ShowJson(std::string line)
{
    Write({{Style::Plain, std::move(line) + '\n'}});
}

void Viewer::Write(const StyledText& text)
{
    if (output.IsConsole()) { // each part in its colour
        consoleGone = consoleGone || !output.Write(text);
    } else {
        forOutput += PlainText(text);
    }
    if (log.IsOpen()) {
        forFile += PlainText(text);
    }
    if (forOutput.size() + forFile.size() >= kMostUnwritten) {
        Flush();
    }
}

void Viewer::Flush()
{
    const bool gone =
        consoleGone || (!forOutput.empty() && !outputGone && !output.Write({{Style::Plain, forOutput}}));
    forOutput.clear();
    if (gone && !std::exchange(outputGone, true)) {
        std::fprintf(stderr, "kestratrace: standard output cannot be written any more%s\n",
                     log.IsOpen() ? "; the file goes on" : "");
    }
    log.Write(std::exchange(forFile, {}));
}

} // namespace kestraboot::tools
