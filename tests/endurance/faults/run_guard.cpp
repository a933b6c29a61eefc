#include "tests/endurance/faults/run_guard.h"

#include "tests/support/watchdog.h"

#include <windows.h>

#include <atomic>
#include <cstdio>
#include <exception>

namespace kestraboot::tests
{
namespace
{

constexpr int kLongestRun = 20; // seconds

char current[512];
std::atomic<unsigned> guards = 0;

[[noreturn]] void End(const char* how)
{
    std::printf("%s: %s\n", current, how);
    std::fflush(stdout);
    ::TerminateProcess(::GetCurrentProcess(), 97);
    for (;;) {
    }
}

LONG CALLBACK NameTheRun(EXCEPTION_POINTERS* raised)
{
    switch (raised->ExceptionRecord->ExceptionCode) {
    case EXCEPTION_ACCESS_VIOLATION:
    case EXCEPTION_STACK_OVERFLOW:
    case EXCEPTION_ILLEGAL_INSTRUCTION:
    case EXCEPTION_INT_DIVIDE_BY_ZERO:
        if (current[0] != '\0') {
            End("crashed");
        }
        break;
    default:
        break;
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

DWORD WINAPI WatchForHangs(void*)
{
    unsigned seen = 0;
    for (int seconds = 0; seconds < kLongestRun || current[0] == '\0'; ++seconds) {
        ::Sleep(1000);
        seconds = guards == seen ? seconds : 0;
        seen = guards;
    }
    End("hangs");
}

void WatchTheRuns()
{
    static const bool watching = [] {
        ::AddVectoredExceptionHandler(1, NameTheRun);
        std::set_terminate([] {
            End("an exception escaped");
        });
        ::CloseHandle(::CreateThread(nullptr, 0, WatchForHangs, nullptr, 0, nullptr));
        return true;
    }();
    static_cast<void>(watching);
}

} // namespace

RunGuard::RunGuard(const std::string& what)
{
    WatchTheRuns();
    RestartWatchdog(); // so that a hang is reported within seconds
    ++guards;
    std::snprintf(current, sizeof current, "%s", what.c_str());
}

RunGuard::~RunGuard()
{
    current[0] = '\0';
}

} // namespace kestraboot::tests
