#include "tests/support/allocation_count.h"

#include "tests/support/import_patch.h"

#include <cstdlib>

namespace kestraboot::tests
{
namespace
{

DWORD countedThread = 0;
long taken = 0;
void* (*original)(std::size_t) = std::malloc;

// Is in the import table of the runtime's DLL, whose operator new all modules share.
void* Allocate(std::size_t size)
{
    if (::GetCurrentThreadId() == countedThread) {
        ++taken;
    }
    return original(size);
}

} // namespace

long AllocationsOf(const std::function<void()>& work)
{
    const HMODULE before = ModuleUnderTest();
    SetModuleUnderTest(::GetModuleHandleW(L"libstdc++-6.dll"));
    const ImportPatch counting("malloc", Allocate);
    SetModuleUnderTest(before);
    original = reinterpret_cast<void* (*)(std::size_t)>(counting.Original());
    taken = 0;
    countedThread = ::GetCurrentThreadId();
    work();
    countedThread = 0;
    return taken;
}

} // namespace kestraboot::tests
