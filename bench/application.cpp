// The application that the road ends with: says that it was started, and ends.
#include "bench/application.h"

#include <windows.h>

int WINAPI wWinMain(HINSTANCE, HINSTANCE, LPWSTR, int)
{
    using namespace kestraboot::bench;
    static_cast<void>(::CreateMutexW(nullptr, FALSE, kRunningMutex)); // until the process ends
    if (const HANDLE started = ::OpenEventW(EVENT_MODIFY_STATE, FALSE, kStartedEvent)) {
        ::SetEvent(started);
    }
    return 0;
}
