#pragma once

#include <windows.h>

#include <functional>

namespace kestraboot::tests
{

/// How many handles of any kind `process` has open. The handle must allow PROCESS_DUP_HANDLE.
[[nodiscard]] int OpenHandlesOf(HANDLE process);

/// How many registry keys, files, processes and mutexes this process has open. Threads, events and the
/// like do not count: Windows and the C++ runtime make some of their own in the background.
[[nodiscard]] int OpenHandles();

/// How many handles `operation` leaves open each time it runs. It runs once before, so that what Windows
/// opens once in a process is not counted, and then often enough to tell a leak from chance.
[[nodiscard]] int HandlesLeftBy(const std::function<void()>& operation);

} // namespace kestraboot::tests
