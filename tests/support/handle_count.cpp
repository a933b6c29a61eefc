// Counts handles by trying their values one after the other. GetProcessHandleCount returns 0 under Wine
// 8. A request for the system's list of all handles terminates Wine's server if a process on the machine
// has just started and has no handle yet: the server reads beyond the end of that process's table.
#include "tests/support/handle_count.h"

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace kestraboot::tests
{
namespace
{

using QueryObject = LONG(WINAPI*)(HANDLE, ULONG, void*, ULONG, ULONG*);

/// "Key", "Process", "File" and so on; empty if the value is not an open handle of this process.
std::wstring_view KindOf(HANDLE handle)
{
    constexpr ULONG kObjectTypeInformation = 2;
    static const auto query = reinterpret_cast<QueryObject>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), "NtQueryObject")));
    static struct {
        USHORT bytes, capacity;
        wchar_t* text;
        std::byte rest[1024];
    } type;
    return query(handle, kObjectTypeInformation, &type, sizeof type, nullptr) == 0
               ? std::wstring_view(type.text, type.bytes / sizeof(wchar_t))
               : std::wstring_view();
}

bool IsOpenIn(HANDLE process, HANDLE handle)
{
    HANDLE copy = nullptr;
    if (::DuplicateHandle(process, handle, ::GetCurrentProcess(), &copy, 0, FALSE,
                          DUPLICATE_SAME_ACCESS)) {
        ::CloseHandle(copy);
        return true;
    }
    return ::GetLastError() != ERROR_INVALID_HANDLE; // some kinds cannot be duplicated
}

/// Calls `isOpen` with every possible value of a handle, until a long run of them is not open: handles
/// are multiples of 4, and Windows allocates the lowest free value first.
template <typename Predicate>
int CountWhere(Predicate isOpen)
{
    constexpr int kRunOfClosedOnes = 128;
    int open = 0;
    int closed = 0;
    for (std::uintptr_t value = 4; closed < kRunOfClosedOnes; value += 4) {
        if (isOpen(reinterpret_cast<HANDLE>(value))) {
            ++open;
            closed = 0;
        } else {
            ++closed;
        }
    }
    if (open == 0) {
        throw std::runtime_error("the handles of the process cannot be counted");
    }
    return open;
}

} // namespace

int OpenHandlesOf(HANDLE process)
{
    return CountWhere([process](HANDLE handle) {
        return IsOpenIn(process, handle);
    });
}

int OpenHandles()
{
    int counted = 0;
    static_cast<void>(CountWhere([&counted](HANDLE handle) {
        const std::wstring_view kind = KindOf(handle);
        counted += kind == L"Key" || kind == L"File" || kind == L"Process" || kind == L"Mutant" ? 1 : 0;
        return !kind.empty();
    }));
    return counted;
}

int HandlesLeftBy(const std::function<void()>& operation)
{
    constexpr int kRuns = 5;
    operation();
    const int before = OpenHandles();
    for (int run = 0; run < kRuns; ++run) {
        operation();
    }
    return (OpenHandles() - before) / kRuns;
}

} // namespace kestraboot::tests
