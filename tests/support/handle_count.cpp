#include "tests/support/handle_count.h"

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace kestraboot::tests
{
namespace
{

// GetProcessHandleCount answers 0 under Wine; the system's list of all handles is true on both.
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
using QueryObject = LONG(WINAPI*)(HANDLE, ULONG, void*, ULONG, ULONG*);

template <typename Function>
Function FromNtdll(const char* name)
{
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"ntdll.dll"), name)));
}

/// "Key", "Process", "File" and so on; empty for a handle that is closed meanwhile.
std::wstring_view KindOf(HANDLE handle)
{
    constexpr ULONG kObjectTypeInformation = 2;
    static const auto query = FromNtdll<QueryObject>("NtQueryObject");
    static struct {
        USHORT bytes, capacity;
        wchar_t* text;
        std::byte rest[1024];
    } type;
    return query(handle, kObjectTypeInformation, &type, sizeof type, nullptr) == 0
               ? std::wstring_view(type.text, type.bytes / sizeof(wchar_t))
               : std::wstring_view();
}

} // namespace

int OpenHandles()
{
    static const auto query = FromNtdll<QuerySystemInformation>("NtQuerySystemInformation");
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
    int own = 0;
    for (std::uintptr_t i = 0; i < entries; ++i) {
        HandleEntry entry = {};
        std::memcpy(&entry, list.data() + 2 * sizeof entries + i * sizeof entry, sizeof entry);
        if (entry.processId != ::GetCurrentProcessId()) {
            continue;
        }
        const std::wstring_view kind = KindOf(reinterpret_cast<HANDLE>(entry.handle));
        own += kind == L"Key" || kind == L"File" || kind == L"Process" || kind == L"Mutant" ? 1 : 0;
    }
    return own;
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
