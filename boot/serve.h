// The boot program's long run, from log-on to log-off.
#pragma once

#include "boot/exit_code.h"

/// Takes control and serves until asked to quit. Returns if there is nothing to serve or the
/// program cannot serve; after it has served it ends the process. Throws std::bad_alloc, and
/// std::runtime_error if no folder can be made the current one. Any other failure has been
/// reported.
[[nodiscard]] ExitCode Serve();
