#include "tests/system/quiet_exit.h"

#include <gtest/gtest.h>

#include <tlhelp32.h>

#include <utility>
#include <vector>

namespace kestraboot::tests
{
namespace
{

class SuspendedThread
{
public:
    explicit SuspendedThread(DWORD threadId) noexcept
        : thread(::OpenThread(THREAD_SUSPEND_RESUME | THREAD_GET_CONTEXT, FALSE, threadId))
    {
        ::SuspendThread(thread);
        // SuspendThread returns early. The context is there only once the thread is suspended.
        CONTEXT context = {};
        context.ContextFlags = CONTEXT_CONTROL;
        ::GetThreadContext(thread, &context);
    }
    SuspendedThread(SuspendedThread&& other) noexcept : thread(std::exchange(other.thread, nullptr)) {}
    SuspendedThread& operator=(SuspendedThread&&) = delete;
    ~SuspendedThread() { ::CloseHandle(thread); }

    void Resume() const noexcept { ::ResumeThread(thread); }

private:
    HANDLE thread;
};

/// A thread that has ended since the snapshot gives an empty object.
std::vector<SuspendedThread> SuspendAllBut(DWORD threadId, DWORD processId)
{
    std::vector<SuspendedThread> suspended;
    const HANDLE snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL found = ::Thread32First(snapshot, &entry); found;
         found = ::Thread32Next(snapshot, &entry)) {
        if (entry.th32OwnerProcessID == processId && entry.th32ThreadID != threadId) {
            suspended.emplace_back(entry.th32ThreadID);
        }
    }
    ::CloseHandle(snapshot);
    return suspended;
}

} // namespace

void SuspendThreadsBeside(HWND window)
{
    DWORD processId = 0;
    const DWORD threadId = ::GetWindowThreadProcessId(window, &processId);
    DWORD_PTR answer = 0;
    for (int attempt = 1; attempt <= 10; ++attempt) {
        const std::vector<SuspendedThread> suspended = SuspendAllBut(threadId, processId);
        // A suspended thread may hold a lock of the process.
        if (::SendMessageTimeoutW(window, WM_NULL, 0, 0, SMTO_NORMAL, 3'000, &answer) != 0) {
            return;
        }
        for (const SuspendedThread& each : suspended) {
            each.Resume();
        }
    }
    ADD_FAILURE() << "the window's thread does not answer";
}

} // namespace kestraboot::tests
