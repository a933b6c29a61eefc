#include "tools/trace/live.h"

#include "tools/trace/channel/debug_channel.h"
#include "tools/trace/channel/line_queue.h"
#include "tools/trace/channel/line_reader.h"
#include "tools/trace/lines/ansi_text.h"
#include "tools/trace/lines/system_time.h"
#include "tools/trace/system_error.h"
#include "tools/trace/viewer.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>
#include <vector>

namespace kestraboot::tools
{
namespace
{

constexpr std::size_t kMostQueued = 4'096; // lines; as many again may be in transit
// Lines that come fast are shown together: waking a thread for each costs more than showing it.
constexpr DWORD kGather = 10; // milliseconds
constexpr std::chrono::milliseconds kLook = std::chrono::milliseconds(250);

/// Decodes the lines, which would delay the reader's thread.
class Finisher
{
public:
    SeenLine Finished(RawLine&& raw)
    {
        return {{raw.utcMilliseconds, OffsetAt(raw.utcMilliseconds), raw.upMilliseconds},
                raw.processId,
                std::move(raw.processName),
                FromAnsi(raw.text)};
    }

    TimeStamp Now()
    {
        const Moment now = clock.Now();
        return {now.utcMilliseconds, OffsetAt(now.utcMilliseconds), now.upMilliseconds};
    }

private:
    /// Queried once a minute: time zones change on whole minutes.
    int OffsetAt(std::int64_t utcMilliseconds)
    {
        if (utcMilliseconds / kMillisecondsPerMinute != minute) {
            minute = utcMilliseconds / kMillisecondsPerMinute;
            offset = OffsetMinutesAtUtc(utcMilliseconds);
        }
        return offset;
    }

    PairedClock clock;
    std::int64_t minute = 0;
    int offset = 0;
};

/// Until no more lines come: the reader stops on request, or by itself.
ExitCode ShowLines(LineQueue& queue, Viewer& viewer, std::uint64_t seconds, HANDLE stop)
{
    Finisher finisher;
    const std::int64_t end = UpMilliseconds() + static_cast<std::int64_t>(seconds) * 1000;
    while (!queue.Finished()) {
        auto longest = kLook;
        if (seconds != 0) {
            const std::int64_t left = end - UpMilliseconds();
            if (left <= 0) {
                ::SetEvent(stop);
            }
            longest = std::clamp(std::chrono::milliseconds(left), std::chrono::milliseconds(0), kLook);
        }
        std::vector<RawLine> lines = queue.Take(longest);
        for (RawLine& line : lines) {
            viewer.Take(finisher.Finished(std::move(line)));
        }
        if (const std::uint64_t lost = queue.TakeLost()) {
            viewer.TakeLost(finisher.Now(), lost);
        }
        if (lines.empty()) {
            viewer.Tick(UpMilliseconds());
        }
        viewer.Flush();
        if (!viewer.Useful()) {
            return ExitCode::Failed;
        }
        if (!lines.empty()) {
            ::Sleep(kGather);
        }
    }
    return viewer.End();
}

} // namespace

ExitCode ShowLive(const TraceOptions& options, const Stop& stop)
{
    DebugChannel channel;
    switch (channel.Open()) {
    case DebugChannel::Opening::HeldByAnother:
        std::fputs("kestratrace: another program already reads the debug output of this session; "
                   "there can be one at a time: end it first\n",
                   stderr);
        return ExitCode::AnotherViewer;
    case DebugChannel::Opening::Failed:
        TellSystemError("make the debug output section");
        return ExitCode::Failed;
    default:
        break;
    }
    Viewer viewer(options);
    if (!viewer.OpenFile()) {
        return ExitCode::Failed;
    }
    LineQueue queue(kMostQueued);
    const LineReader reader(channel, queue, stop.Event());
    const ExitCode shown = ShowLines(queue, viewer, options.seconds, stop.Event());
    if (reader.Failed()) {
        std::fputs("kestratrace: the debug output cannot be read any more\n", stderr);
        return ExitCode::Failed;
    }
    return shown;
}

} // namespace kestraboot::tools
