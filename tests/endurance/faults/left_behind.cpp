#include "tests/endurance/faults/left_behind.h"

#include "tests/endurance/faults/armed.h"
#include "tests/support/allocation_failure.h"
#include "tests/support/handle_count.h"

#include <windows.h>

#include <array>
#include <cwchar>
#include <winternl.h>

namespace kestraboot::tests
{
namespace
{

/// Without the process status functions, which ask the system for each module's memory.
int LoadedModules()
{
    const LIST_ENTRY& head = ::NtCurrentTeb()->ProcessEnvironmentBlock->Ldr->InMemoryOrderModuleList;
    int count = 0;
    for (const LIST_ENTRY* entry = head.Flink; entry != &head; entry = entry->Flink) {
        ++count;
    }
    return count;
}

/// A handle that stays open takes one of the lowest free values, and the next handles get others. As
/// long as they get the same values, there is no need to count.
int Handles(bool lookAgain)
{
    constexpr std::size_t kMostAtATime = 10; // that an operation has open
    static std::array<HANDLE, kMostAtATime> lowestFree = {};
    static int counted = 0;
    if (!lookAgain) {
        return counted;
    }
    std::array<HANDLE, kMostAtATime> made = {};
    for (HANDLE& each : made) {
        each = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    }
    for (const HANDLE each : made) {
        ::CloseHandle(each);
    }
    if (made != lowestFree) {
        lowestFree = made;
        counted = OpenHandlesOf(::GetCurrentProcess());
    }
    return counted;
}

volatile long runningThreads = 0;

/// Windows calls a program at the begin and the end of each thread except for its first one.
void WINAPI CountThread(void*, DWORD reason, void*)
{
    if (reason == DLL_THREAD_ATTACH) {
        ::InterlockedIncrement(&runningThreads);
    } else if (reason == DLL_THREAD_DETACH) {
        ::InterlockedDecrement(&runningThreads);
    }
}

} // namespace

extern "C" [[gnu::section(".CRT$XLF"), gnu::used]] const PIMAGE_TLS_CALLBACK kestrabootCountThread =
    CountThread;

Belongings LookAround(bool afterRun)
{
    const UINT mode = ::SetErrorMode(0);
    ::SetErrorMode(mode);
    Belongings found;
    ::GetCurrentDirectoryW(MAX_PATH, found.folder);
    found.handles = Handles(afterRun);
    found.threads = runningThreads;
    found.modules = LoadedModules();
    found.memory = MemoryBalance();
    found.errorMode = mode;
    found.blocks = LiveAllocations();
    return found;
}

std::string LeftBehind(const Belongings& before, const Belongings& after)
{
    std::string left;
    const auto count = [&](const char* what, long difference) {
        if (difference != 0) {
            left += kLeftBehind + std::string(what) + ' ' + std::to_string(difference) + '\n';
        }
    };
    count("handles", after.handles - before.handles);
    count("threads", after.threads - before.threads);
    count("modules", after.modules - before.modules);
    count("blocks of memory", after.blocks - before.blocks);
    count("system memory", after.memory - before.memory);
    if (after.errorMode != before.errorMode) {
        left += std::string(kLeftBehind) + "another error mode\n";
        ::SetErrorMode(before.errorMode);
    }
    if (std::wcscmp(after.folder, before.folder) != 0) {
        left += std::string(kLeftBehind) + "another current directory\n";
        ::SetCurrentDirectoryW(before.folder);
    }
    return left;
}

} // namespace kestraboot::tests
