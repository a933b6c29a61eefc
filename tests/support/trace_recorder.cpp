#include "tests/support/trace_recorder.h"

#include <algorithm>
#include <chrono>

namespace kestraboot::tests
{

TraceRecorder::TraceRecorder()
    : output([this](const wchar_t* line) {
          const std::lock_guard lock(mutex);
          lines.emplace_back(line);
          written.notify_all();
      })
{
}

std::vector<std::wstring> TraceRecorder::Lines() const
{
    const std::lock_guard lock(mutex);
    return lines;
}

int TraceRecorder::Count(const std::wstring& line) const
{
    const std::lock_guard lock(mutex);
    return static_cast<int>(std::ranges::count(lines, line));
}

bool TraceRecorder::Await(const std::wstring& line, int times)
{
    std::unique_lock lock(mutex);
    return written.wait_for(lock, std::chrono::seconds(20), [&] {
        return std::ranges::count(lines, line) >= times;
    });
}

void TraceRecorder::Clear()
{
    const std::lock_guard lock(mutex);
    lines.clear();
}

} // namespace kestraboot::tests
