#pragma once

#include "tests/support/temp_folder.h"

#include <functional>
#include <string>

namespace kestraboot::fuzz
{

/// Catches the standard output of an operation; made once for many operations.
class StandardOutput
{
public:
    StandardOutput();
    StandardOutput(const StandardOutput&) = delete;
    StandardOutput& operator=(const StandardOutput&) = delete;
    ~StandardOutput();

    /// Narrow, with bare line feeds; also after an exception of the operation, by the next call of
    /// Taken.
    void During(const std::function<void()>& operation);

    /// The output since the last call.
    [[nodiscard]] std::string Taken();

private:
    tests::TempFolder folder;
    int caught;
    int real;
};

} // namespace kestraboot::fuzz
