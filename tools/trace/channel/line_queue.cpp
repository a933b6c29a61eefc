#include "tools/trace/channel/line_queue.h"

#include <utility>

namespace kestraboot::tools
{

void LineQueue::Push(RawLine line)
{
    {
        const std::lock_guard lock(mutex);
        if (lines.size() == capacity) {
            ++lost;
            return;
        }
        lines.push_back(std::move(line));
    }
    changed.notify_one();
}

void LineQueue::Close()
{
    {
        const std::lock_guard lock(mutex);
        closed = true;
    }
    changed.notify_one();
}

std::vector<RawLine> LineQueue::Take(std::chrono::milliseconds longest)
{
    std::unique_lock lock(mutex);
    changed.wait_for(lock, longest, [&] {
        return closed || !lines.empty();
    });
    return std::exchange(lines, {});
}

std::uint64_t LineQueue::TakeLost()
{
    const std::lock_guard lock(mutex);
    return std::exchange(lost, 0);
}

bool LineQueue::Finished()
{
    const std::lock_guard lock(mutex);
    return closed && lines.empty();
}

} // namespace kestraboot::tools
