#include "tests/endurance/faults/processes.h"

#include "tests/endurance/faults/armed.h"
#include "tests/endurance/faults/journal.h"

#include <tlhelp32.h>

#include <algorithm>
#include <cstdint>
#include <cwchar>

namespace kestraboot::tests
{
namespace
{

constexpr DWORD kOtherInstance = 5000;
constexpr DWORD kOtherProgram = 6000;
constexpr std::size_t kMostHandles = 16'384;

wchar_t ownPath[MAX_PATH];
DWORD processOf[kMostHandles]; ///< by handle
int listed = 0;

DWORD& ProcessOf(HANDLE handle) noexcept
{
    return processOf[reinterpret_cast<std::uintptr_t>(handle) / 4 % kMostHandles];
}

HANDLE Open(DWORD, BOOL, DWORD process) noexcept
{
    const HANDLE opened = OpenSomeProcess();
    ProcessOf(opened) = process;
    return opened;
}

BOOL ListModules(HANDLE, HMODULE* list, DWORD, DWORD* bytes) noexcept
{
    if (FailureNow("K32EnumProcessModules")) {
        return FALSE;
    }
    *list = reinterpret_cast<HMODULE>(0x400000);
    *bytes = sizeof(HMODULE);
    return TRUE;
}

DWORD ReadPath(HANDLE process, HMODULE, wchar_t* path, DWORD capacity) noexcept
{
    const CallArguments arguments = {0, 0, reinterpret_cast<std::uint64_t>(path), capacity};
    if (const auto failure = FailureNow("K32GetModuleFileNameExW", arguments)) {
        return static_cast<DWORD>(*failure);
    }
    const wchar_t* const shown =
        ProcessOf(process) == kOtherProgram ? L"C:\\Windows\\notepad.exe" : ownPath;
    std::wcsncpy(path, shown, capacity);
    return static_cast<DWORD>(std::wcslen(shown));
}

HANDLE TakeSnapshot(DWORD, DWORD) noexcept
{
    return OpenSomeProcess();
}

BOOL NextProcess(HANDLE list, PROCESSENTRY32W* entry) noexcept
{
    if (list == INVALID_HANDLE_VALUE) {
        ::SetLastError(ERROR_INVALID_HANDLE);
        return FALSE;
    }
    const DWORD processes[] = {::GetCurrentProcessId(), kOtherInstance, kOtherProgram};
    if (listed == static_cast<int>(std::size(processes))) {
        ::SetLastError(ERROR_NO_MORE_FILES);
        return FALSE;
    }
    entry->th32ProcessID = processes[listed++];
    return TRUE;
}

BOOL FirstProcess(HANDLE list, PROCESSENTRY32W* entry) noexcept
{
    listed = 0;
    return NextProcess(list, entry);
}

BOOL Terminate(HANDLE process, UINT) noexcept
{
    Journal::AddNumber(L"ends process", ProcessOf(process));
    ::CloseHandle(process); // the product leaves it open
    return TRUE;
}

BOOL ListWindows(WNDENUMPROC callback, LPARAM parameter)
{
    for (const std::uintptr_t window : {0x111U, 0x222U, 0x333U}) {
        if (!callback(reinterpret_cast<HWND>(window), parameter)) {
            return FALSE;
        }
    }
    return TRUE;
}

int ReadTitle(HWND window, wchar_t* title, int capacity) noexcept
{
    const bool isBoot = window == reinterpret_cast<HWND>(std::uintptr_t{0x222});
    std::wcsncpy(title, isBoot ? L"Corvane Kestrafetch Boot" : L"Other",
                 static_cast<std::size_t>(capacity));
    return 5;
}

LRESULT Send(HWND window, UINT message, WPARAM, LPARAM) noexcept
{
    Journal::AddNumber(L"sends to window",
                       static_cast<long long>(reinterpret_cast<std::uintptr_t>(window)));
    Journal::AddNumber(L"  message", message);
    return 0;
}

} // namespace

void SetRunningProgram(const std::wstring& path)
{
    path.copy(ownPath, MAX_PATH - 1);
}

void RestartProcesses() noexcept
{
    listed = 0;
}

HANDLE OpenSomeProcess() noexcept
{
    HANDLE opened = nullptr;
    ::DuplicateHandle(::GetCurrentProcess(), ::GetCurrentProcess(), ::GetCurrentProcess(), &opened, 0,
                      FALSE, DUPLICATE_SAME_ACCESS);
    ProcessOf(opened) = ::GetCurrentProcessId();
    return opened;
}

ProcessPatches::ProcessPatches()
    : open("OpenProcess", Open), modules("K32EnumProcessModules", ListModules),
      olderModules("EnumProcessModules", ListModules), path("K32GetModuleFileNameExW", ReadPath),
      olderPath("GetModuleFileNameExW", ReadPath), snapshot("CreateToolhelp32Snapshot", TakeSnapshot),
      first("Process32FirstW", FirstProcess), next("Process32NextW", NextProcess),
      end("TerminateProcess", Terminate), windows("EnumWindows", ListWindows),
      title("GetWindowTextW", ReadTitle), send("SendMessageW", Send)
{
}

} // namespace kestraboot::tests
