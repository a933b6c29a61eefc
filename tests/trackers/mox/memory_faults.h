#pragma once

#include "tests/support/import_patch.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

namespace kestraboot::tests
{

/// While the object lives, the module under test gets no memory. Keep the object for the one call under
/// test.
class NoMemory
{
public:
    /// Refuses `size` bytes or more, and allocates less.
    explicit NoMemory(std::size_t size = 0) : allocate("_Znwy", reinterpret_cast<void*>(&Allocate))
    {
        refused = size;
    }

private:
    static void* Allocate(std::size_t size)
    {
        void* const memory = size < refused ? std::malloc(size) : nullptr; // like operator new
        return memory != nullptr ? memory : throw std::bad_alloc();
    }

    static inline std::size_t refused = 0;
    ImportPatch allocate;
};

/// While the object lives, memory that the module under test frees is overwritten, so that a later use
/// shows.
class SpoilFreedMemory
{
public:
#ifdef __cpp_sized_deallocation
    SpoilFreedMemory() : release("_ZdlPvy", reinterpret_cast<void*>(&Spoil)) {}
#else
    SpoilFreedMemory() : release("_ZdlPv", reinterpret_cast<void*>(&SpoilWhole)) {}
#endif

private:
    static void Spoil(void* memory, std::size_t size)
    {
        if (memory != nullptr) {
            std::memset(memory, 0xDD, size);
        }
        std::free(memory); // like the runtime's operator delete
    }
    static void SpoilWhole(void* memory)
    {
        Spoil(memory, memory != nullptr ? _msize(memory) : 0);
    }

    ImportPatch release;
};

} // namespace kestraboot::tests
