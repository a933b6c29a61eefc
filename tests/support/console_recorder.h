#pragma once

#include "tests/support/temp_folder.h"

#include <string>

namespace kestraboot::tests
{

/// During its lifetime redirects standard output, and no other stream, to a file. A test's own output is
/// not visible meanwhile, so compare afterwards.
class ConsoleRecorder
{
public:
    ConsoleRecorder();
    ConsoleRecorder(const ConsoleRecorder&) = delete;
    ConsoleRecorder& operator=(const ConsoleRecorder&) = delete;
    ~ConsoleRecorder();

    /// The output that was written and flushed, narrow, with bare line feeds. From here on standard
    /// output is as before.
    [[nodiscard]] std::string Text();

private:
    void Restore();

    TempFolder folder;
    std::filesystem::path file;
    int before;
};

} // namespace kestraboot::tests
