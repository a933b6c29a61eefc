#pragma once

namespace kestraboot::tests
{

/// Restarts the time limit of the running test: for tests of many cases, as long as they make progress.
void RestartWatchdog();

} // namespace kestraboot::tests
