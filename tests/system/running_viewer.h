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

    /// What it has shown so far, whole lines only.
    [[nodiscard]] std::vector<std::string> Lines();

    /// Waits until a line holds that text and answers the line; empty when none comes.
    [[nodiscard]] std::string Await(const std::string& text);

    ChildProcess process;
};

/// Waits until kestratrace.exe, or whatever reads the debug output, is ready for lines.
[[nodiscard]] bool AwaitReader();

} // namespace kestraboot::tests
