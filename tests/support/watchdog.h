#pragma once

namespace kestraboot::tests
{

/// Grants the running test its whole time once more: for tests of many cases, as long as they get on.
void RestartWatchdog();

} // namespace kestraboot::tests
