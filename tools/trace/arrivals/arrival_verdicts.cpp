#include "tools/trace/arrivals/arrival_verdicts.h"

#include "tools/trace/lines/trace_line.h"

#include <algorithm>

namespace kestraboot::tools
{

void ArrivalVerdicts::Take(const SeenLine& line)
{
    const std::string_view text = WithoutLineEnd(line.text);
    const TraceEvent event = ReadTraceEvent(text);
    const bool tagged = event.type != EventType::Started && !ParseTraceLine(text).component.empty();
    if (event.type == EventType::None && !tagged) {
        return;
    }
    ProcessArrivals& process = ProcessOf(line);
    if (tagged) {
        process.SetHasTheLibrary();
    }
    process.Take(line, event);
}

ProcessArrivals& ArrivalVerdicts::ProcessOf(const SeenLine& line)
{
    const auto known = std::ranges::find(processes, line.processId, &ProcessArrivals::Id);
    if (known != processes.end()) {
        processes.splice(processes.end(), processes, known);
    } else {
        if (processes.size() == kMostProcesses) {
            processes.front().End();
            processes.pop_front();
        }
        processes.emplace_back(line.processId, tell);
    }
    return processes.back();
}

void ArrivalVerdicts::Tick(std::int64_t upMilliseconds)
{
    for (ProcessArrivals& process : processes) {
        process.Tick(upMilliseconds);
    }
    std::erase_if(processes, [&](const ProcessArrivals& process) {
        return process.IsOver(upMilliseconds);
    });
}

void ArrivalVerdicts::End()
{
    for (ProcessArrivals& process : processes) {
        process.End();
    }
    processes.clear();
}

std::size_t ArrivalVerdicts::OpenCount() const noexcept
{
    std::size_t count = 0;
    for (const ProcessArrivals& process : processes) {
        count += process.OpenCount();
    }
    return count;
}

} // namespace kestraboot::tools
