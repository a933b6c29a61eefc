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
    /// Holds what it showed as JSON against the schema of its page.
    ~RunningViewer();
    RunningViewer(const RunningViewer&) = delete;
    RunningViewer& operator=(const RunningViewer&) = delete;

    /// What it has shown so far, whole lines only.
    [[nodiscard]] std::vector<std::string> Lines();

    /// Waits until a line holds that text and answers the line; empty when none comes.
    [[nodiscard]] std::string Await(const std::string& text);

    ChildProcess process;

private:
    bool json;
};

/// Waits until kestratrace.exe, or whatever reads the debug output, is ready for lines.
[[nodiscard]] bool AwaitReader();

} // namespace kestraboot::tests
