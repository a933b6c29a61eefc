// The boot program's long run, from log-on to log-off.
#pragma once

#include "boot/exit_code.h"

/// Takes control and serves until asked to quit. Returns when there is nothing to serve, or no way to;
/// once it has served it ends the process. A failure has been told. Throws std::bad_alloc.
[[nodiscard]] ExitCode Serve();
