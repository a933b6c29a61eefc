// The thread that reads lines from the channel, so that no writer waits until they are shown.
#pragma once

#include "tools/trace/channel/debug_channel.h"
#include "tools/trace/channel/line_queue.h"

#include <windows.h>
#include <atomic>
#include <thread>

namespace kestraboot::tools
{

/// Reads until `stop` is set, which its destructor also does; closes the queue when it has
/// finished.
class LineReader
{
public:
    /// All arguments must outlive the reader; `opened` is open.
    LineReader(DebugChannel& opened, LineQueue& filled, HANDLE stopEvent);
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;
    ~LineReader();

    /// Whether it stopped by itself, because memory or the channel failed.
    [[nodiscard]] bool Failed() const noexcept { return failed; }

private:
    void Read() noexcept;
    void ReadLines();

    DebugChannel& channel;
    LineQueue& queue;
    const HANDLE stop;
    std::atomic<bool> failed = false;
    std::thread thread;
};

} // namespace kestraboot::tools
