#include "tests/support/trace_recorder.h"

#include <algorithm>

namespace kestraboot::tests
{

TraceRecorder::TraceRecorder()
    : output([this](const wchar_t* line) {
          const std::lock_guard lock(mutex);
          lines.emplace_back(line);
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

void TraceRecorder::Clear()
{
    const std::lock_guard lock(mutex);
    lines.clear();
}

} // namespace kestraboot::tests
