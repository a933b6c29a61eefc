#include "registry/other_instances.h"

#include "foundation/handles.h"
#include "foundation/process_identity.h"
#include "foundation/text.h"

#include <tlhelp32.h>

namespace kestraboot
{
namespace
{

constexpr DWORD kMillisecondsToQuit = 2000;

static_assert(sizeof(PROCESSENTRY32W) == 568); // tlhelp32.h, 64-bit

struct SnapshotTraits {
    using Resource = HANDLE;
    static Resource Invalid() noexcept { return INVALID_HANDLE_VALUE; }
    static void Close(Resource snapshot) noexcept { ::CloseHandle(snapshot); }
};

/// True if the process was another instance, which is then terminated.
bool StopIfOtherInstance(DWORD processId, DWORD ownProcessId, const std::wstring& executablePath)
{
    UniqueKernelHandle process(::OpenProcess(PROCESS_ALL_ACCESS, FALSE, processId));
    if (!process) {
        return false;
    }
    std::wstring path;
    if (!ReadExecutablePath(process.get(), path)) {
        // Left open: the process that uninstalls ends soon, and its handles with it.
        static_cast<void>(process.release());
        return false;
    }
    // If an executable's own path cannot be read, it has no other instances.
    if (processId == ownProcessId || executablePath.empty() ||
        !EqualIgnoringCase(path, executablePath)) {
        return false;
    }
    ::EnumWindows(CloseBootWindowsProc, 0);
    ::Sleep(kMillisecondsToQuit);
    // Left open, so that Windows cannot give the identifier to a new process meanwhile.
    ::TerminateProcess(process.release(), 0);
    return true;
}

} // namespace

BOOL CALLBACK CloseBootWindowsProc(HWND window, LPARAM) noexcept
{
    wchar_t title[kFieldCapacity] = {};
    ::GetWindowTextW(window, title, kFieldCapacity);
    if (_wcsicmp(title, L"Corvane Kestrafetch Boot") != 0) {
        return TRUE;
    }
    ::SendMessageW(window, WM_QUIT, 0, 0); // sent, so that a window procedure sees it; not posted
    return FALSE;
}

bool StopOtherInstances(DWORD ownProcessId, const std::wstring& executablePath)
{
    const UniqueResource<SnapshotTraits> snapshot(::CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    bool found = false;
    for (BOOL more = ::Process32FirstW(snapshot.get(), &entry); more;
         more = ::Process32NextW(snapshot.get(), &entry)) {
        if (StopIfOtherInstance(entry.th32ProcessID, ownProcessId, executablePath)) {
            found = true;
        }
    }
    return found;
}

} // namespace kestraboot
