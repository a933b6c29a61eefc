#pragma once

#include <windows.h>

namespace kestraboot::tests
{

/// Suspends all threads of a process except the one that owns `window`, so that the process can be asked
/// to end. Fails the test if that thread does not answer.
///
/// Wine's TerminateProcess ends the other threads wherever they are, even while they hold a lock of
/// Wine's own that the terminating thread needs next; about one process in several hundred then never
/// exits. A suspended thread holds no such lock.
void SuspendThreadsBeside(HWND window);

} // namespace kestraboot::tests
