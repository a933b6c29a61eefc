#pragma once

#include "tests/system/child_process.h"

#include <string>
#include <vector>

namespace kestraboot::tests
{

/// kestratrace.exe, ready to receive lines; it runs until the object ends.
class RunningViewer
{
public:
    explicit RunningViewer(const std::wstring& arguments = {});
    /// Validates its JSON output against the schema of its page.
    ~RunningViewer();
    RunningViewer(const RunningViewer&) = delete;
    RunningViewer& operator=(const RunningViewer&) = delete;

    /// Its output so far, complete lines only.
    [[nodiscard]] std::vector<std::string> Lines();

    /// Waits until a line contains that text and returns the line; empty if none comes.
    [[nodiscard]] std::string Await(const std::string& text);

    ChildProcess process;

private:
    bool json;
};

/// Waits until kestratrace.exe, or another reader of the debug output, is ready for lines.
[[nodiscard]] bool AwaitReader();

} // namespace kestraboot::tests
