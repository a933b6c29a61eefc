#pragma once

#include "tests/support/import_patch.h"

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

    void Clear();

private:
    mutable std::mutex mutex;
    std::vector<std::wstring> lines;
    FAKE_IMPORT(OutputDebugStringW) output;
};

} // namespace kestraboot::tests
