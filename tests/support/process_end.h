#pragma once

#include "tests/support/import_patch.h"

namespace kestraboot::tests
{

/// Thrown instead of ending the process.
struct ProcessEnded {
    UINT exitCode;
};

/// Keeps a test running when the module under test ends the process: ExitProcess throws ProcessEnded.
class ProcessEndCatcher
{
private:
    FAKE_IMPORT(ExitProcess)
    exit{[](UINT exitCode) {
        throw ProcessEnded{exitCode};
    }};
};

} // namespace kestraboot::tests
