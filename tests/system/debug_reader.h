#pragma once

#include "tools/trace/channel/debug_channel.h"

#include <windows.h>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace kestraboot::tests
{

/// During its lifetime receives the trace lines of every other process of this session. One in a
/// session.
class DebugReader
{
public:
    DebugReader();
    DebugReader(const DebugReader&) = delete;
    DebugReader& operator=(const DebugReader&) = delete;
    ~DebugReader();

    /// The lines of one process so far, in order. They include those written before this call.
    [[nodiscard]] std::vector<std::string> LinesOf(DWORD processId) const;

    /// Waits until any process has written the line; returns false after `milliseconds`.
    [[nodiscard]] bool Await(const std::string& line, DWORD milliseconds = 30'000) const;

    /// The number of times that the line was written before this call.
    [[nodiscard]] int Count(const std::string& line) const;

    void Clear();

private:
    void Read();
    void CatchUp() const;
    [[nodiscard]] int CountSoFar(const std::string& line) const;

    mutable std::mutex mutex;
    std::vector<tools::DebugChannel::Line> lines;
    tools::DebugChannel channel;
    HANDLE stop;
    std::thread reader;
};

} // namespace kestraboot::tests
