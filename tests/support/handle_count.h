#pragma once

#include <windows.h>

#include <functional>

namespace kestraboot::tests
{

/// The number of open handles of any kind in `process`. The handle must allow PROCESS_DUP_HANDLE.
[[nodiscard]] int OpenHandlesOf(HANDLE process);

/// The number of registry keys, files, processes and mutexes that this process has open. Threads, events
/// and similar objects do not count, because Windows and the C++ runtime create some in the background.
[[nodiscard]] int OpenHandles();

/// The number of handles that `operation` leaves open each time it runs. It runs once before, so that
/// handles that Windows opens once in a process do not count, and then often enough to distinguish a
/// leak from chance.
[[nodiscard]] int HandlesLeftBy(const std::function<void()>& operation);

} // namespace kestraboot::tests
