// The memory of a host while the service is idle: bench_memory ROW DAYS ROUNDS. A removable drive
// exists and nothing happens, so the volume tracker polls the drives every 500 ms. Its clock runs as
// fast as it can poll. Prints "memory,SIDE,DAY,BYTES": once for this process before it loads the
// library, and then with the library after each number of simulated days.
#include "kestraboot/device_connect.h"
#include "tests/support/import_patch.h"
#include "tests/system/imaging/resource_use.h"

#include <windows.h>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <exception>

using namespace kestraboot;

namespace
{

constexpr ULONGLONG kDay = 24ULL * 60 * 60 * 1000; // milliseconds
constexpr DWORD kRemovable = DWORD{1} << 4;
/// One poll in this number calls Windows itself; the call takes a hundred times as long as the rest of
/// a poll.
constexpr long kRealLook = 1000;

std::atomic<ULONGLONG> now = 1000;
std::atomic<ULONGLONG> pauseAt = 0;
HANDLE paused = nullptr;
HANDLE goOn = nullptr;
long looks = 0;

bool RealLook() noexcept
{
    return looks % kRealLook == 0;
}

void Print(const char* side, unsigned long long day)
{
    std::printf("memory,%s,%llu,%lld\n", side, day,
                tests::ResourceUseOf(::GetCurrentProcess()).privateBytes);
}

/// The answers of Windows to the library, until the process exits.
struct FastWorld {
    FAKE_IMPORT(GetVersionExW)
    version{[](OSVERSIONINFOW* record) -> BOOL {
        record->dwPlatformId = VER_PLATFORM_WIN32_NT;
        record->dwMajorVersion = 5; // Windows 2000: the volume tracker, still images and plugins
        record->dwMinorVersion = 0;
        return TRUE;
    }};
    FAKE_IMPORT(GetTickCount64)
    clock{[] {
        return now.load();
    }};
    FAKE_IMPORT(MsgWaitForMultipleObjectsEx)
    wait{[this](DWORD count, const HANDLE* handles, DWORD milliseconds, DWORD wakeMask,
                DWORD flags) -> DWORD {
        if (milliseconds == INFINITE) {
            return wait.CallOriginal(count, handles, milliseconds, wakeMask, flags);
        }
        if (now >= pauseAt) {
            ::SetEvent(paused);
            ::WaitForSingleObject(goOn, INFINITE);
        }
        now += milliseconds;
        ++looks;
        return WAIT_TIMEOUT;
    }};
    FAKE_IMPORT(PeekMessageW)
    messages{[this](MSG* message, HWND window, UINT first, UINT last, UINT flags) -> BOOL {
        return RealLook() && messages.CallOriginal(message, window, first, last, flags);
    }};
    FAKE_IMPORT(GetLogicalDrives)
    drives{[this] {
        return (RealLook() ? drives.CallOriginal() : 0) | kRemovable;
    }};
    FAKE_IMPORT(GetDriveTypeW)
    type{[this](const wchar_t* drive) -> UINT {
        const UINT answer = RealLook() ? type.CallOriginal(drive) : UINT{DRIVE_FIXED};
        return drive[0] == L'E' ? DRIVE_REMOVABLE : answer;
    }};
    FAKE_IMPORT(GetVolumeInformationW)
    volume{[this](const wchar_t* drive, wchar_t* name, DWORD capacity, DWORD* serial, DWORD* length,
                  DWORD* flags, wchar_t* system, DWORD systemCapacity) -> BOOL {
        if (RealLook()) {
            volume.CallOriginal(drive, name, capacity, serial, length, flags, system, systemCapacity);
        }
        return FALSE; // a reader without a card
    }};
};

/// A thread that waits, with a hidden window.
DWORD WINAPI IdleThread(LPVOID) noexcept
{
    static_cast<void>(::CreateWindowExW(0, L"STATIC", L"Idle", WS_POPUP, 20, 20, 200, 200, nullptr,
                                        nullptr, nullptr, nullptr));
    ::SetEvent(paused);
    MSG message = {};
    while (::GetMessageW(&message, nullptr, 0, 0) > 0) {
    }
    return 0;
}

void RunUntil(unsigned long long day)
{
    pauseAt = 1000 + day * kDay;
    ::SetEvent(goOn);
    ::WaitForSingleObject(paused, INFINITE);
    Print("with the service", day);
}

} // namespace

int main(int count, char** words)
{
    try {
        const unsigned long long days = count > 2 ? std::strtoull(words[2], nullptr, 10) : 10;
        paused = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
        goOn = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
        if (days != 0) {
            Print("without the library", 0);
        } else {
            for (int i = 0; i < 3; ++i) {
                static_cast<void>(
                    ::CreateThread(nullptr, 0, IdleThread, nullptr, 0, nullptr)); // until exit
                ::WaitForSingleObject(paused, INFINITE);
            }
            Print("without the library but with three such threads", 0);
            std::fflush(stdout);
            ::ExitProcess(0);
        }
        const HMODULE library = ::LoadLibraryW(L"kestraboot.dll");
        const auto start = reinterpret_cast<void (*)()>(
            reinterpret_cast<void*>(::GetProcAddress(library, "StartDeviceConnectService")));
        tests::SetModuleUnderTest(library);
        static FastWorld world;
        Print("with the library loaded", 0);
        if (start == nullptr) {
            throw std::runtime_error("the library has no StartDeviceConnectService");
        }
        start();
        ::WaitForSingleObject(paused, INFINITE); // the first poll is over, the other trackers wait
        Print("with the service", 0);
        for (const unsigned long long day : {1ULL, days / 2, days}) {
            RunUntil(day);
        }
        std::fflush(stdout);
        ::ExitProcess(0); // under the trackers, as a host exits
    } catch (const std::exception& error) {
        std::fprintf(stderr, "bench_memory: %s\n", error.what());
        return 1;
    }
}
