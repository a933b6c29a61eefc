#include "tools/trace/stop.h"

namespace kestraboot::tools
{
namespace
{

constexpr DWORD kLongestEnd = 4000; // milliseconds; Windows ends the process after five seconds

// For the console's handler, which runs on a thread of its own. Closed with the process.
HANDLE asked = nullptr;
HANDLE ended = nullptr;

BOOL WINAPI OnControl(DWORD event) noexcept
{
    ::SetEvent(asked);
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        ::WaitForSingleObject(ended, kLongestEnd); // the process ends when this returns
    }
    return TRUE;
}

} // namespace

Stop::Stop()
{
    asked = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ended = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    ready = asked != nullptr && ended != nullptr && ::SetConsoleCtrlHandler(OnControl, TRUE);
}

Stop::~Stop()
{
    if (ended != nullptr) {
        ::SetEvent(ended);
    }
}

HANDLE Stop::Event() const noexcept
{
    return asked;
}

bool Stop::Asked() const noexcept
{
    return ::WaitForSingleObject(asked, 0) == WAIT_OBJECT_0;
}

} // namespace kestraboot::tools
