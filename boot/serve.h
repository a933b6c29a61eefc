// The boot program's long run, from log-on to log-off.
#pragma once

#include "boot/exit_code.h"

/// Takes control and serves until asked to quit. Returns when there is nothing to serve, or no way to;
/// once it has served it ends the process. Throws std::bad_alloc, and std::runtime_error where no folder
/// can be worked in; any other failure has been told.
[[nodiscard]] ExitCode Serve();
