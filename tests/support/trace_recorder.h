#pragma once

#include "tests/support/import_patch.h"

#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

namespace kestraboot::tests
{

/// During its lifetime records every trace line of the module under test, complete and in UTF-16. Any
/// thread.
class TraceRecorder
{
public:
    TraceRecorder();

    [[nodiscard]] std::vector<std::wstring> Lines() const;

    /// The number of times that exactly this line was written.
    [[nodiscard]] int Count(const std::wstring& line) const;

    /// Returns when exactly this line has been written that many times; returns false after 20 seconds.
    [[nodiscard]] bool Await(const std::wstring& line, int times = 1);

    void Clear();

private:
    mutable std::mutex mutex;
    std::condition_variable written;
    std::vector<std::wstring> lines;
    FAKE_IMPORT(OutputDebugStringW) output;
};

} // namespace kestraboot::tests
