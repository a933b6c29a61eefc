// The application that the road ends with: says that it was started, and ends.
#include "bench/application.h"

#include <windows.h>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    using namespace kestraboot::bench;
    ::CreateMutexW(nullptr, FALSE, kRunningMutex);
    if (const HANDLE started = ::OpenEventW(EVENT_MODIFY_STATE, FALSE, kStartedEvent)) {
        ::SetEvent(started);
    }
    return 0;
}
