#include "tools/trace/stop.h"

namespace kestraboot::tools
{
namespace
{

constexpr DWORD kLongestEnd = 4000; // milliseconds; Windows ends the process after five seconds

// For the console's handler, which runs on a thread of its own. Closed with the process.
HANDLE stopAsked = nullptr;
HANDLE stopEnded = nullptr;

BOOL WINAPI OnControl(DWORD event) noexcept
{
    ::SetEvent(stopAsked);
    if (event != CTRL_C_EVENT && event != CTRL_BREAK_EVENT) {
        ::WaitForSingleObject(stopEnded, kLongestEnd); // the process ends when this returns
    }
    return TRUE;
}

} // namespace

Stop::Stop()
{
    stopAsked = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    stopEnded = stopAsked != nullptr ? ::CreateEventW(nullptr, TRUE, FALSE, nullptr) : nullptr;
    ready = stopEnded != nullptr && ::SetConsoleCtrlHandler(OnControl, TRUE);
}

Stop::~Stop()
{
    if (stopEnded != nullptr) {
        ::SetEvent(stopEnded);
    }
}

HANDLE Stop::Event() const noexcept
{
    return stopAsked;
}

bool Stop::Asked() const noexcept
{
    return ::WaitForSingleObject(stopAsked, 0) == WAIT_OBJECT_0;
}

} // namespace kestraboot::tools
