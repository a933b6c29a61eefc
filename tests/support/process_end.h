#pragma once

#include "tests/support/import_patch.h"

namespace kestraboot::tests
{

/// Thrown in place of the end of the process.
struct ProcessEnded {
    UINT exitCode;
};

/// Lets a test live on when the module under test ends the process: ExitProcess throws ProcessEnded.
class ProcessEndCatcher
{
private:
    FAKE_IMPORT(ExitProcess)
    exit{[](UINT exitCode) {
        throw ProcessEnded{exitCode};
    }};
};

} // namespace kestraboot::tests
