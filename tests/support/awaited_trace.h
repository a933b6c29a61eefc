#pragma once

#include "tests/support/import_patch.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// Records every trace line of the module under test, and lets a test wait for one. Any thread.
class AwaitedTrace
{
public:
    AwaitedTrace()
        : output([this](const wchar_t* line) {
              const std::lock_guard lock(mutex);
              lines.emplace_back(line);
              changed.notify_all();
          })
    {
    }

    /// Returns when exactly this line has been written that many times; returns false after 20 seconds.
    [[nodiscard]] bool Await(const std::wstring& line, int times = 1)
    {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, std::chrono::seconds(20), [&] {
            return std::ranges::count(lines, line) >= times;
        });
    }

    [[nodiscard]] std::vector<std::wstring> Lines() const
    {
        const std::lock_guard lock(mutex);
        return lines;
    }

private:
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::vector<std::wstring> lines;
    FAKE_IMPORT(OutputDebugStringW) output;
};

} // namespace kestraboot::tests
