#pragma once

#include "tests/support/temp_folder.h"

#include <string>

namespace kestraboot::tests
{

/// Sends standard output, and no other stream, to a file while it lives. Nothing that a test itself
/// prints meanwhile is seen: compare afterwards.
class ConsoleRecorder
{
public:
    ConsoleRecorder();
    ConsoleRecorder(const ConsoleRecorder&) = delete;
    ConsoleRecorder& operator=(const ConsoleRecorder&) = delete;
    ~ConsoleRecorder();

    /// What was written and flushed, narrow, with bare line feeds; standard output is as before from
    /// here on.
    [[nodiscard]] std::string Text();

private:
    void Restore();

    TempFolder folder;
    std::filesystem::path file;
    int before;
};

} // namespace kestraboot::tests
