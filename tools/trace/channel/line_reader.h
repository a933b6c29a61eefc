// The thread that takes the lines out of the channel, so that no writer waits for what becomes of them.
#pragma once

#include "tools/trace/channel/debug_channel.h"
#include "tools/trace/channel/line_queue.h"

#include <windows.h>
#include <atomic>
#include <thread>

namespace kestraboot::tools
{

/// Reads until `stop` is set, which its end does too; closes the queue when it is done.
class LineReader
{
public:
    /// All are to outlive the reader; `opened` is open.
    LineReader(DebugChannel& opened, LineQueue& filled, HANDLE stopEvent);
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;
    ~LineReader();

    /// Whether it ended by itself, for want of memory or of the channel.
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
