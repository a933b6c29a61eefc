#include "tools/trace/viewer.h"

#include "tools/trace/arrivals/arrival_format.h"
#include "tools/trace/lines/line_format.h"

#include <cstdio>
#include <utility>

namespace kestraboot::tools
{

Viewer::Viewer(const TraceOptions& asked, LogFile file)
    : options(asked), filter(asked.only), output(asked.colour), log(std::move(file)),
      verdicts([this](const Arrival& arrival) {
          Show(arrival);
      })
{
}

void Viewer::Take(const SeenLine& seen)
{
    if (options.arrivals) {
        verdicts.Take(seen);
        return;
    }
    const TraceLine line = ParseTraceLine(seen.text);
    if (!filter.Passes(line.component, line.tracker)) {
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

void Viewer::End()
{
    verdicts.End();
}

void Viewer::Show(const Arrival& arrival)
{
    if (!filter.Passes(arrival.tracker.empty() ? "KestraBoot" : "DeviceConnect", arrival.tracker)) {
        return;
    }
    if (options.json) {
        ShowJson(ArrivalJson(arrival));
        return;
    }
    for (StyledText& line : FormatArrival(arrival)) {
        Show(arrival.noticed, std::move(line));
    }
}

void Viewer::Show(const TimeStamp& time, StyledText text)
{
    std::string today = DayText(time);
    if (today != day) {
        day = std::move(today);
        Write({{Style::Faint, "-- " + day + "\r\n"}});
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
    if (!outputGone && !output.Write(text)) {
        outputGone = true;
        std::fprintf(stderr, "kestratrace: standard output cannot be written any more%s\n",
                     log.IsOpen() ? "; the file goes on" : "");
    }
    log.Write(PlainText(text));
}

} // namespace kestraboot::tools
