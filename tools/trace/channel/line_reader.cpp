#include "tools/trace/channel/line_reader.h"

#include "tools/trace/channel/process_names.h"
#include "tools/trace/lines/system_time.h"

#include <exception>
#include <utility>

namespace kestraboot::tools
{
LineReader::LineReader(DebugChannel& opened, LineQueue& filled, HANDLE stopEvent)
    : channel(opened), queue(filled), stop(stopEvent), thread([this] {
          Read();
      })
{
}

LineReader::~LineReader()
{
    ::SetEvent(stop);
    thread.join();
}

void LineReader::Read() noexcept
{
    try {
        ReadLines();
    } catch (const std::exception&) {
        failed = true; // memory ran out
    }
    queue.Close();
}

void LineReader::ReadLines()
{
    ProcessNames names;
    PairedClock clock;
    DebugChannel::Line line;
    for (;;) {
        const DebugChannel::Waiting came = channel.Next(stop, line);
        if (came != DebugChannel::Waiting::Line) {
            failed = came == DebugChannel::Waiting::Failed;
            return;
        }
        const Moment now = clock.Now();
        queue.Push({now.utcMilliseconds, now.upMilliseconds, line.processId, names.Of(line.processId),
                    line.text});
    }
}

} // namespace kestraboot::tools
