#include "tests/endurance/faults/trace_world.h"

#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/journal.h"
#include "tests/support/import_patch.h"

#include <windows.h>

#include <cstring>
#include <cwchar>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <thread>

namespace kestraboot::tests
{
namespace
{

constexpr std::size_t kFull = 4'090; ///< bytes: the file is rotated before the first line
constexpr int kMostWaits = 50;
constexpr DWORD kWriter = 556;

HANDLE stops[2]; ///< in a real process Windows closes them
int stopsMade = 0;
PHANDLER_ROUTINE handler = nullptr;
char* section = nullptr; ///< as the writer sees it
int waits = 0;

HANDLE MakeEvent(SECURITY_ATTRIBUTES* security, BOOL manual, BOOL set, const wchar_t* name) noexcept
{
    const HANDLE made = ::CreateEventW(security, manual, set, nullptr);
    if (name == nullptr && stopsMade < 2) {
        stops[stopsMade++] = made;
    }
    ::SetLastError(ERROR_SUCCESS);
    return made;
}

HANDLE MakeSection(HANDLE file, SECURITY_ATTRIBUTES* security, DWORD protection, DWORD high, DWORD low,
                   const wchar_t*) noexcept
{
    return ::CreateFileMappingW(file, security, protection, high, low, nullptr);
}

HANDLE MakeMutex(SECURITY_ATTRIBUTES*, const wchar_t*, DWORD flags, DWORD) noexcept
{
    return ::CreateMutexExW(nullptr, nullptr, flags, MUTEX_ALL_ACCESS);
}

void* Map(HANDLE mapped, DWORD, DWORD high, DWORD low, SIZE_T size) noexcept
{
    return section = static_cast<char*>(::MapViewOfFile(mapped, FILE_MAP_WRITE, high, low, size));
}

BOOL SetHandler(PHANDLER_ROUTINE set, BOOL) noexcept
{
    handler = set;
    return TRUE;
}

void WriteLine(const char* line) noexcept
{
    std::memcpy(section, &kWriter, sizeof kWriter);
    std::strcpy(section + sizeof kWriter, line);
}

/// Two lines with a pause between them, then Ctrl+C until it has an effect.
DWORD Await(DWORD count, const HANDLE* handles, BOOL all, DWORD) noexcept
{
    switch (waits++) {
    case 0:
        WriteLine("<KestraProxy><Took control of the situation>");
        return WAIT_OBJECT_0;
    case 1:
        return WAIT_TIMEOUT;
    case 2:
        WriteLine("<***DeviceConnect***><VolumeTracker><DEVICE ARRIVED>");
        return WAIT_OBJECT_0;
    case kMostWaits:
        Journal::Add(L"CANNOT BE STOPPED");
        return WAIT_FAILED;
    default:
        Journal::Add(L"Ctrl+C");
        handler(CTRL_C_EVENT);
        return ::WaitForMultipleObjects(count, handles, all, 0);
    }
}

void Pause(DWORD) noexcept {}

HANDLE OpenWriter(DWORD, BOOL, DWORD) noexcept
{
    return ::CreateEventW(nullptr, TRUE, TRUE, nullptr);
}

BOOL AskWriterImage(HANDLE, DWORD, wchar_t* path, DWORD* length) noexcept
{
    constexpr std::wstring_view kImage = L"C:\\Viewer\\kestraboot.exe";
    *length = static_cast<DWORD>(kImage.copy(path, kImage.size()));
    return TRUE;
}

/// 2026-11-21, 10:30 in UTC.
constexpr FILETIME kNow = {0x42E6'4400, 0x01DD'79A3};

void AskTime(FILETIME* time) noexcept
{
    *time = kNow;
}

BOOL AskFileTime(HANDLE, FILETIME*, FILETIME*, FILETIME* written) noexcept
{
    *written = kNow;
    return TRUE;
}

/// A time zone one hour east of UTC, far from midnight.
BOOL ToLocal(const TIME_ZONE_INFORMATION*, const SYSTEMTIME* utc, SYSTEMTIME* local) noexcept
{
    *local = *utc;
    ++local->wHour;
    return TRUE;
}

std::int64_t SteadyNow() noexcept
{
    return 1'000'000'000;
}

/// libstdc++'s std::thread::_State, which is private in GCC 14: what the thread runs.
struct ThreadState {
    virtual ~ThreadState() = default;
    virtual void Run() = 0;
};

/// Runs the thread to its end at its start, so that the order of all calls is always the same. The state
/// is a std::unique_ptr by value: such an argument is passed by its address, and the caller destroys it.
void StartThread(std::thread* thread, ThreadState* const* state, void (*)())
{
    if (FailureNow("std::thread")) {
        throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again));
    }
    (*state)->Run();
    constexpr std::uintptr_t kJoinable = 1;
    std::memcpy(static_cast<void*>(thread), &kJoinable, sizeof kJoinable);
}

void JoinThread(std::thread* thread) noexcept
{
    constexpr std::uintptr_t kNone = 0;
    std::memcpy(static_cast<void*>(thread), &kNone, sizeof kNone);
}

BOOL DenyNoColour() noexcept
{
    ::SetLastError(ERROR_ENVVAR_NOT_FOUND);
    return 0;
}

void ShowLines(const wchar_t* what, const std::wstring& path)
{
    std::ifstream in(std::filesystem::path(path), std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        const bool old = line.starts_with("old");
        Journal::Add(what, old ? L"(the old lines)" : std::wstring(line.begin(), line.end()).c_str());
    }
}

} // namespace

struct TraceWorld::Patches {
    ImportPatch event{"CreateEventW", MakeEvent};
    ImportPatch sections{"CreateFileMappingW", MakeSection};
    ImportPatch mutex{"CreateMutexExW", MakeMutex};
    ImportPatch map{"MapViewOfFile", Map};
    ImportPatch control{"SetConsoleCtrlHandler", SetHandler};
    ImportPatch await{"WaitForMultipleObjects", Await};
    ImportPatch pause{"Sleep", Pause};
    ImportPatch open{"OpenProcess", OpenWriter};
    ImportPatch image{"QueryFullProcessImageNameW", AskWriterImage};
    ImportPatch time{"GetSystemTimeAsFileTime", AskTime};
    ImportPatch fileTime{"GetFileTime", AskFileTime};
    ImportPatch local{"SystemTimeToTzSpecificLocalTime", ToLocal};
    ImportPatch variable{"GetEnvironmentVariableW", DenyNoColour};
    ImportPatch steady{"_ZNSt6chrono3_V212steady_clock3nowEv", SteadyNow};
    ImportPatch start{
        "_ZNSt6thread15_M_start_threadESt10unique_ptrINS_6_StateESt14default_deleteIS1_EEPFvvE",
        StartThread};
    ImportPatch join{"_ZNSt6thread4joinEv", JoinThread};
};

TraceWorld::TraceWorld() : folder(files.Path().wstring()), patches(std::make_unique<Patches>())
{
    files.AddFile(
        L"recording.log",
        "13:26:59.994  kestraboot.exe         556  <KestraProxy><Took control of the situation>\r\n"
        "no viewer wrote this\r\n"
        "13:27:00.025  kestraboot.exe         556  <***DeviceConnect***><VolumeTracker><DEVICE");
}

TraceWorld::~TraceWorld() = default;

void TraceWorld::Restore() const
{
    files.AddFile(L"trace.log", "old" + std::string(kFull - 4, '.') + "\n");
    ::DeleteFileW((Recorded() + L".1").c_str());
    waits = 0;
}

void TraceWorld::EndProcess() const
{
    while (stopsMade > 0) {
        ::CloseHandle(stops[--stopsMade]);
    }
}

void TraceWorld::ShowRecorded() const
{
    ShowLines(L"file", Recorded());
    ShowLines(L"earlier file", Recorded() + L".1");
}

} // namespace kestraboot::tests
