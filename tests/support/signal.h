#pragma once

#include <windows.h>

namespace kestraboot::tests
{

/// One thread tells others that something has come about. (std::promise does not link with Clang here.)
class Signal
{
public:
    Signal() : event(::CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;
    ~Signal() { ::CloseHandle(event); }

    void Set() const { ::SetEvent(event); }
    /// Returns once it was set; the watchdog of the tests ends a wait for ever.
    void Wait() const { ::WaitForSingleObject(event, INFINITE); }

private:
    HANDLE event;
};

} // namespace kestraboot::tests
