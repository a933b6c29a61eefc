#pragma once

#include "tests/support/import_patch.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

namespace kestraboot::tests
{

/// While it lives, memory cannot be had by the module under test: keep it to the one call that is
/// tested.
class NoMemory
{
public:
    /// None of `size` bytes or more; less is there.
    explicit NoMemory(std::size_t size = 0) : allocate("_Znwy", reinterpret_cast<void*>(&Allocate))
    {
        refused = size;
    }

private:
    static void* Allocate(std::size_t size)
    {
        void* const memory = size < refused ? std::malloc(size) : nullptr; // as operator new has it
        return memory != nullptr ? memory : throw std::bad_alloc();
    }

    static inline std::size_t refused = 0;
    ImportPatch allocate;
};

/// While it lives, what the module under test frees is overwritten, so that a use of it shows.
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
        std::free(memory); // as the runtime's operator delete does
    }
    static void SpoilWhole(void* memory)
    {
        Spoil(memory, memory != nullptr ? _msize(memory) : 0);
    }

    ImportPatch release;
};

} // namespace kestraboot::tests
