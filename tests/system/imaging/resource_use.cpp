#include "tests/system/imaging/resource_use.h"

#include "tests/support/handle_count.h"

#include <stdexcept>
#include <tlhelp32.h>

namespace kestraboot::tests
{
namespace
{

/// Committed memory except for images and mapped files. Wine's own counter returns 0.
long long CountPrivateBytes(HANDLE process)
{
    long long bytes = 0;
    MEMORY_BASIC_INFORMATION region = {};
    for (const char* at = nullptr; ::VirtualQueryEx(process, at, &region, sizeof region) != 0;
         at = static_cast<const char*>(region.BaseAddress) + region.RegionSize) {
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) {
            bytes += static_cast<long long>(region.RegionSize);
        }
    }
    if (bytes == 0) {
        throw std::runtime_error("the memory of a process cannot be read");
    }
    return bytes;
}

struct WindowCount {
    DWORD processId;
    long count;
};

BOOL CALLBACK CountWindow(HWND window, LPARAM counted)
{
    auto& windows = *reinterpret_cast<WindowCount*>(counted);
    DWORD owner = 0;
    ::GetWindowThreadProcessId(window, &owner);
    windows.count += owner == windows.processId ? 1 : 0;
    return TRUE;
}

long CountThreads(DWORD processId)
{
    const HANDLE snapshot = ::CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    long count = 0;
    for (BOOL more = ::Thread32First(snapshot, &entry); more; more = ::Thread32Next(snapshot, &entry)) {
        count += entry.th32OwnerProcessID == processId ? 1 : 0;
    }
    ::CloseHandle(snapshot);
    if (count == 0) {
        throw std::runtime_error("the threads of a process cannot be counted");
    }
    return count;
}

} // namespace

ResourceUse ResourceUseOf(HANDLE process)
{
    ResourceUse use;
    use.handles = OpenHandlesOf(process);
    use.threads = CountThreads(::GetProcessId(process));
    WindowCount windows = {::GetProcessId(process), 0};
    ::EnumWindows(CountWindow, reinterpret_cast<LPARAM>(&windows));
    use.windows = windows.count;
    use.gdiObjects = static_cast<long>(::GetGuiResources(process, GR_GDIOBJECTS));
    use.userObjects = static_cast<long>(::GetGuiResources(process, GR_USEROBJECTS));
    use.privateBytes = CountPrivateBytes(process);
    return use;
}

std::ostream& operator<<(std::ostream& out, const ResourceUse& use)
{
    return out << use.handles << " handles, " << use.threads << " threads, " << use.windows
               << " windows, " << use.gdiObjects << " GDI objects, " << use.userObjects
               << " USER objects, " << use.privateBytes / 1024 << " KB private";
}

} // namespace kestraboot::tests
