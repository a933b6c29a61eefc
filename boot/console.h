#pragma once

/// Lets standard output reach the console that this program was started from, if there is one. A program
/// of the Windows subsystem has none of its own, so that log-on shows no window; output that was
/// redirected by whoever started the program is left as it is.
void JoinParentConsole() noexcept;
