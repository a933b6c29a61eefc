#include "tests/system/imaging/resource_use.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <vector>

namespace kestraboot::tests
{
namespace
{

// The system's list of all handles: GetProcessHandleCount answers 0 under Wine.
constexpr ULONG kExtendedHandleInformation = 64;
constexpr LONG kInfoLengthMismatch = static_cast<LONG>(0xC0000004);

struct HandleEntry {
    void* object;
    std::uintptr_t processId;
    std::uintptr_t handle;
    ULONG access;
    USHORT creator;
    USHORT type;
    ULONG attributes;
    ULONG reserved;
};

using QuerySystemInformation = LONG(WINAPI*)(ULONG, void*, ULONG, ULONG*);

long CountHandles(DWORD processId)
{
    static const auto query = reinterpret_cast<QuerySystemInformation>(reinterpret_cast<void*>(
        ::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    std::vector<std::byte> list(std::size_t{1} << 18);
    LONG status = 0;
    while ((status = query(kExtendedHandleInformation, list.data(), static_cast<ULONG>(list.size()),
                           nullptr)) == kInfoLengthMismatch) {
        list.resize(list.size() * 2);
    }
    if (status != 0) {
        throw std::runtime_error("the system does not list its handles");
    }
    std::uintptr_t entries = 0;
    std::memcpy(&entries, list.data(), sizeof entries);
    long count = 0;
    for (std::uintptr_t i = 0; i < entries; ++i) {
        HandleEntry entry = {};
        std::memcpy(&entry, list.data() + 2 * sizeof entries + i * sizeof entry, sizeof entry);
        count += entry.processId == processId ? 1 : 0;
    }
    return count;
}

/// Committed memory that is no image and no mapped file. Wine's own counter answers 0.
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
        throw std::runtime_error("the system does not tell the memory of a process");
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

} // namespace

ResourceUse ResourceUseOf(HANDLE process)
{
    ResourceUse use;
    const DWORD processId = ::GetProcessId(process);
    use.handles = CountHandles(processId);
    WindowCount windows = {processId, 0};
    ::EnumWindows(CountWindow, reinterpret_cast<LPARAM>(&windows));
    use.windows = windows.count;
    use.gdiObjects = static_cast<long>(::GetGuiResources(process, GR_GDIOBJECTS));
    use.userObjects = static_cast<long>(::GetGuiResources(process, GR_USEROBJECTS));
    use.privateBytes = CountPrivateBytes(process);
    return use;
}

std::ostream& operator<<(std::ostream& out, const ResourceUse& use)
{
    return out << use.handles << " handles, " << use.windows << " windows, " << use.gdiObjects
               << " GDI objects, " << use.userObjects << " USER objects, " << use.privateBytes / 1024
               << " KB private";
}

} // namespace kestraboot::tests
