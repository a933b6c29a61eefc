#pragma once

#include <windows.h>

namespace kestraboot::tests
{

/// One thread signals an event to others. (std::promise does not link with Clang here.)
class Signal
{
public:
    Signal() : event(::CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;
    ~Signal() { ::CloseHandle(event); }

    void Set() const { ::SetEvent(event); }
    /// Returns once it is set. If it is never set, the tests' watchdog terminates the wait.
    void Wait() const { ::WaitForSingleObject(event, INFINITE); }

private:
    HANDLE event;
};

} // namespace kestraboot::tests
