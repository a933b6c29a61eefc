// The queue between the thread that reads the channel and the one that shows the lines, because
// programs that write debug lines must never wait for a slow console.
#pragma once

#include "tools/trace/channel/raw_line.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <vector>

namespace kestraboot::tools
{

class LineQueue
{
public:
    explicit LineQueue(std::size_t most) : capacity(most) {}

    /// If the queue is full, the line is lost and counted.
    void Push(RawLine line);

    /// No more lines will come.
    void Close();

    /// All lines that are present, once there is one; none if none came in time or none will come
    /// any more.
    [[nodiscard]] std::vector<RawLine> Take(std::chrono::milliseconds longest);

    /// The number of lines lost since the last call.
    [[nodiscard]] std::uint64_t TakeLost();

    [[nodiscard]] bool Finished();

private:
    const std::size_t capacity;
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<RawLine> lines;
    std::uint64_t lost = 0;
    bool closed = false;
};

} // namespace kestraboot::tools
