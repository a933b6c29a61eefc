#include "tests/support/allocation_failure.h"

#include "tests/support/handle_count.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <new>

namespace kestraboot::tests
{
namespace
{

DWORD failingThread = 0;
int successesLeft = 0;
int askedFor = 0;
Shortage kind = Shortage::FromThenOn;
bool happened = false;
volatile long liveBlocks = 0;

// Is in the import table of the runtime's DLL; the C runtime's own memory is not affected.
void* Allocate(std::size_t size)
{
    if (::GetCurrentThreadId() == failingThread) {
        ++askedFor;
        if (successesLeft-- <= 0 && !(happened && kind == Shortage::Once)) {
            happened = true;
            return nullptr;
        }
    }
    void* const block = std::malloc(size);
    if (block != nullptr) {
        ::InterlockedIncrement(&liveBlocks);
    }
    return block;
}

void Free(void* block)
{
    if (block != nullptr) {
        ::InterlockedDecrement(&liveBlocks);
    }
    std::free(block);
}

struct RuntimePatches {
    ImportPatch allocate{"malloc", Allocate};
    ImportPatch release{"free", Free};
};

/// Patched once and never restored, because a patch itself needs memory.
void PatchRuntime()
{
    static const std::unique_ptr<RuntimePatches> patches = [] {
        const HMODULE before = ModuleUnderTest();
        SetModuleUnderTest(::GetModuleHandleW(L"libstdc++-6.dll"));
        auto made = std::make_unique<RuntimePatches>();
        SetModuleUnderTest(before);
        return made;
    }();
}

} // namespace

AllocationFailure::AllocationFailure(int successes, Shortage shortage)
{
    PatchRuntime();
    successesLeft = successes;
    askedFor = 0;
    happened = false;
    kind = shortage;
    failingThread = ::GetCurrentThreadId();
}

AllocationFailure::~AllocationFailure()
{
    failingThread = 0;
}

bool AllocationFailure::Happened() noexcept
{
    return happened;
}

int AllocationFailure::AskedFor() noexcept
{
    return askedFor;
}

long LiveAllocations()
{
    PatchRuntime();
    return liveBlocks;
}

int ForEveryAllocation(const std::function<void()>& operation,
                       const std::function<void(bool threw)>& afterFailure, Shortage shortage)
{
    const auto runWith = [&](int successes) {
        try {
            const AllocationFailure failure(successes, shortage);
            operation();
        } catch (const std::bad_alloc&) {
            return true;
        }
        return false;
    };
    operation();
    runWith(0); // the runtime opens a handle or two at the first exception without memory
    const int handlesBefore = OpenHandles();
    for (int successes = 0;; ++successes) {
        const bool threw = runWith(successes);
        if (!AllocationFailure::Happened()) {
            return successes;
        }
        EXPECT_EQ(OpenHandles(), handlesBefore) << "with " << successes << " allocations";
        afterFailure(threw);
    }
}

} // namespace kestraboot::tests
