#include "tests/endurance/storms/tracker_clock.h"

#include <dbt.h>

namespace kestraboot::tests
{

constexpr DWORD kPatience = 30'000; // milliseconds

TrackerClock::TrackerClock()
    : idle(::CreateEventW(nullptr, FALSE, FALSE, nullptr)),
      threads([this](SECURITY_ATTRIBUTES* security, SIZE_T stack, LPTHREAD_START_ROUTINE entry,
                     void* argument, DWORD flags, DWORD* id) -> HANDLE {
          // The volume tracker is the first that the service starts.
          return threadsStarted++ == 0
                     ? threads.CallOriginal(security, stack, entry, argument, flags, id)
                     : nullptr;
      }),
      clock([this] {
          return now.load();
      }),
      sleep([this](DWORD milliseconds) {
          now += milliseconds;
      }),
      wait([this](DWORD count, const HANDLE* handles, DWORD, DWORD wakeMask, DWORD flags) {
          ::SetEvent(idle);
          return wait.CallOriginal(count, handles, INFINITE, wakeMask, flags);
      })
{
}

bool TrackerClock::AwaitIdle() const
{
    return ::WaitForSingleObject(idle, kPatience) == WAIT_OBJECT_0;
}

bool TrackerClock::AwaitFirstLook()
{
    if (!AwaitIdle()) {
        return false;
    }
    window = ::FindWindowW(L"DeviceDetectWin", L"CardReaderLookupWindow");
    return window != nullptr;
}

bool TrackerClock::LookAgain()
{
    constexpr ULONGLONG kPollMilliseconds = 500;
    now += kPollMilliseconds;
    DWORD_PTR answer = 0;
    return ::SendMessageTimeoutW(window, WM_DEVICECHANGE, DBT_DEVNODES_CHANGED, 0, SMTO_NORMAL,
                                 kPatience, &answer) != 0 &&
           AwaitIdle();
}

} // namespace kestraboot::tests
