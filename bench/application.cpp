// The application at the end of the road: signals its start, and exits.
#include "bench/application.h"

#include <windows.h>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    using namespace kestraboot::bench;
    static_cast<void>(::CreateMutexW(nullptr, FALSE, kRunningMutex)); // until the process exits
    if (const HANDLE started = ::OpenEventW(EVENT_MODIFY_STATE, FALSE, kStartedEvent)) {
        ::SetEvent(started);
    }
    return 0;
}
