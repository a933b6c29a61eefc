#include "tests/support/guarded_heap.h"

#include "tests/support/import_patch.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string_view>

namespace kestraboot::tests
{
namespace
{

constexpr std::size_t kPage = 4096;
constexpr std::size_t kAlignment = 16; // guaranteed by malloc on 64-bit Windows
constexpr std::size_t kArenaPages = std::size_t{1} << 24;
/// Each block in use splits the address space; Wine's host allows 65,530 pieces (vm.max_map_count).
constexpr long kMostBlocks = 20'000;
constexpr unsigned char kSlack = 0xA5; ///< fills the gap between a block and its page's other end

/// The previous malloc, calloc, realloc, free and _msize.
struct Original {
    void* (*malloc)(std::size_t);
    void (*free)(void*);
    void* (*realloc)(void*, std::size_t);
    std::size_t (*msize)(void*);
};
Original original;

[[noreturn]] void Report(const char* what, const void* block)
{
    std::printf("guarded heap: %s, block %p\n", what, block);
    std::fflush(stdout);
    ::TerminateProcess(::GetCurrentProcess(), 97);
    std::abort();
}

/// Address space that is used once completely before any of it is used again. A block's size is stored
/// separately, by its first page: one more than the size, and 0 for a page without the start of a block.
class Arena
{
public:
    explicit Arena(bool startOnPage) : blocksStartOnPage(startOnPage)
    {
        pages = static_cast<unsigned char*>(
            ::VirtualAlloc(nullptr, kArenaPages * kPage, MEM_RESERVE, PAGE_NOACCESS));
        sizes = static_cast<std::uint32_t*>(::VirtualAlloc(nullptr, kArenaPages * sizeof *sizes,
                                                           MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
        if (pages == nullptr || sizes == nullptr) {
            Report("no address space", pages);
        }
    }

    [[nodiscard]] bool Owns(const void* block) const noexcept
    {
        const auto address = reinterpret_cast<std::uintptr_t>(block);
        const auto start = reinterpret_cast<std::uintptr_t>(pages);
        return address >= start && address < start + kArenaPages * kPage;
    }

    /// Null if no run of pages is free, too many blocks are in use, or Windows has no memory.
    void* Allocate(std::size_t size) noexcept
    {
        if (size >= UINT32_MAX || blocks >= kMostBlocks) {
            return nullptr;
        }
        const std::size_t count = PagesFor(size);
        const std::size_t first = TakePages(count);
        if (first == kArenaPages) {
            return nullptr;
        }
        unsigned char* const start = pages + first * kPage;
        if (::VirtualAlloc(start, count * kPage, MEM_COMMIT, PAGE_READWRITE) == nullptr) {
            sizes[first] = 0;
            return nullptr;
        }
        ::InterlockedIncrement(&blocks);
        sizes[first] = static_cast<std::uint32_t>(size) + 1;
        std::memset(start, kSlack, count * kPage);
        return start + OffsetOf(size);
    }

    void Free(void* block) noexcept
    {
        const std::size_t first = PageOf(block);
        const std::size_t size = SizeOf(block);
        unsigned char* const start = pages + first * kPage;
        const std::size_t offset = OffsetOf(size);
        const auto untouched = [](unsigned char byte) {
            return byte == kSlack;
        };
        if (!std::all_of(start, start + offset, untouched) ||
            !std::all_of(start + offset + size, start + PagesFor(size) * kPage, untouched)) {
            Report("written beside it", block);
        }
        ::VirtualFree(start, PagesFor(size) * kPage, MEM_DECOMMIT);
        ::AcquireSRWLockExclusive(&lock);
        sizes[first] = 0;
        ::ReleaseSRWLockExclusive(&lock);
        ::InterlockedDecrement(&blocks);
    }

    [[nodiscard]] std::size_t SizeOf(const void* block) const noexcept
    {
        const std::size_t first = PageOf(block);
        if (sizes[first] == 0 || pages + first * kPage + OffsetOf(sizes[first] - 1) !=
                                     static_cast<const unsigned char*>(block)) {
            Report("freed twice, or never allocated", block);
        }
        return sizes[first] - 1;
    }

private:
    static std::size_t PagesFor(std::size_t size) noexcept
    {
        return std::max<std::size_t>(1, (size + kPage - 1) / kPage);
    }

    /// From the start of its first page to the block.
    [[nodiscard]] std::size_t OffsetOf(std::size_t size) const noexcept
    {
        return blocksStartOnPage ? 0 : (PagesFor(size) * kPage - size) / kAlignment * kAlignment;
    }

    [[nodiscard]] std::size_t PageOf(const void* block) const noexcept
    {
        return static_cast<std::size_t>(static_cast<const unsigned char*>(block) - pages) / kPage;
    }

    /// The first of `count` free pages, followed by a free one that stays inaccessible.
    std::size_t TakePages(std::size_t count) noexcept
    {
        ::AcquireSRWLockExclusive(&lock);
        std::size_t first = next;
        std::size_t found = kArenaPages;
        for (int round = 0; round < 2 && found == kArenaPages; first = 1, ++round) {
            while (first + count + 1 < kArenaPages) {
                std::size_t used = 0; // pages from `first` that are not available
                for (std::size_t page = first; page <= first + count; ++page) {
                    if (sizes[page] != 0) {
                        used = page + PagesFor(sizes[page] - 1) + 1 - first;
                    }
                }
                if (used == 0) {
                    found = first;
                    break;
                }
                first += used;
            }
        }
        if (found != kArenaPages) {
            sizes[found] = static_cast<std::uint32_t>((count - 1) * kPage + 2); // taken
            next = found + count + 1;
        }
        ::ReleaseSRWLockExclusive(&lock);
        return found;
    }

    bool blocksStartOnPage;
    unsigned char* pages = nullptr;
    std::uint32_t* sizes = nullptr;
    std::size_t next = 1; ///< an inaccessible page is before the first block too
    LONG blocks = 0;      ///< in use
    SRWLOCK lock = SRWLOCK_INIT;
};

Arena* arena = nullptr;

void* Allocate(std::size_t size)
{
    void* const block = arena->Allocate(size);
    return block != nullptr ? block : original.malloc(size);
}

void* AllocateZeroed(std::size_t count, std::size_t size)
{
    if (size != 0 && count > SIZE_MAX / size) {
        return nullptr;
    }
    void* const block = Allocate(count * size);
    return block != nullptr ? std::memset(block, 0, count * size) : nullptr;
}

void Free(void* block)
{
    if (block != nullptr) {
        arena->Owns(block) ? arena->Free(block) : original.free(block);
    }
}

void* Reallocate(void* block, std::size_t size)
{
    if (block == nullptr) {
        return Allocate(size);
    }
    if (!arena->Owns(block)) {
        return original.realloc(block, size);
    }
    void* const moved = size != 0 ? Allocate(size) : nullptr;
    if (moved != nullptr) {
        std::memcpy(moved, block, std::min(size, arena->SizeOf(block)));
    }
    if (moved != nullptr || size == 0) {
        Free(block);
    }
    return moved;
}

std::size_t SizeOfBlock(void* block)
{
    return arena->Owns(block) ? arena->SizeOf(block) : original.msize(block);
}

template <typename Function>
void FindOriginal(Function& function, const char* name)
{
    function = reinterpret_cast<Function>(
        reinterpret_cast<void*>(::GetProcAddress(::GetModuleHandleW(L"msvcrt.dll"), name)));
}

/// Never restored: blocks live as long as the process.
void PatchModule(const wchar_t* name)
{
    const HMODULE module = ::GetModuleHandleW(name);
    if (module == nullptr) {
        return; // not in this process
    }
    const HMODULE before = ModuleUnderTest();
    SetModuleUnderTest(module);
    const auto patch = [](const char* function, auto* with) {
        try {
            static_cast<void>(new ImportPatch(function, reinterpret_cast<void*>(with)));
        } catch (const std::logic_error&) {
            return; // the module does not call it
        }
    };
    patch("malloc", &Allocate);
    patch("calloc", &AllocateZeroed);
    patch("realloc", &Reallocate);
    patch("free", &Free);
    patch("_msize", &SizeOfBlock);
    SetModuleUnderTest(before);
}

} // namespace

void GuardHeapIfAsked()
{
    const char* const asked = std::getenv("KESTRABOOT_GUARD");
    if (asked == nullptr) {
        return;
    }
    const std::string_view side = asked;
    if (side != "start" && side != "end") {
        throw std::invalid_argument("KESTRABOOT_GUARD is neither start nor end");
    }
    FindOriginal(original.malloc, "malloc");
    FindOriginal(original.free, "free");
    FindOriginal(original.realloc, "realloc");
    FindOriginal(original.msize, "_msize");
    static Arena blocks(side == "start");
    arena = &blocks;
    for (const wchar_t* const module :
         {static_cast<const wchar_t*>(nullptr), L"kestraboot.dll", L"libstdc++-6.dll"}) {
        PatchModule(module);
    }
}

} // namespace kestraboot::tests
