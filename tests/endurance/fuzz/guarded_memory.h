#pragma once

#include <windows.h>

#include <cstddef>
#include <cstring>

namespace kestraboot::fuzz
{

/// Memory with an inaccessible page behind its last byte.
class GuardedMemory
{
public:
    GuardedMemory()
        : pages(static_cast<std::byte*>(
              ::VirtualAlloc(nullptr, 3 * kPage, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE)))
    {
        DWORD before = 0;
        ::VirtualProtect(pages + 2 * kPage, kPage, PAGE_NOACCESS, &before);
    }
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;
    ~GuardedMemory() { ::VirtualFree(pages, 0, MEM_RELEASE); }

    /// The first `size` bytes, of at most two pages, moved to the very end.
    void* Put(const void* bytes, std::size_t size)
    {
        return std::memcpy(pages + 2 * kPage - size, bytes, size);
    }

private:
    static constexpr std::size_t kPage = 4096;
    std::byte* pages;
};

} // namespace kestraboot::fuzz
