#include "tests/cost/call_count.h"

#include "tests/endurance/faults/call_gate.h"

#include <string_view>

namespace kestraboot::tests
{
namespace
{

constexpr int kMostCalls = 4096;

// The counters take no memory, because the calls come from inside the product.
const char* calls[kMostCalls];
int made = 0;
DWORD countedThread = 0;

/// GetCurrentThreadId without a call, because every call of this program passes the gate.
DWORD ThisThread() noexcept
{
    constexpr unsigned long kThreadIdInTeb = 0x48;
    return __readgsdword(kThreadIdInTeb);
}

/// The calls of the guarded heap of the hardened run. Another test counts the allocations.
bool IsOfHeap(std::string_view function) noexcept
{
    return function == "VirtualAlloc" || function == "VirtualFree" ||
           function == "AcquireSRWLockExclusive" || function == "ReleaseSRWLockExclusive";
}

bool Count(GatedCall& call) noexcept
{
    const bool ofWindows = call.function[0] >= 'A' && call.function[0] <= 'Z';
    if (ThisThread() == countedThread && ofWindows && !IsOfHeap(call.function) && made < kMostCalls) {
        calls[made++] = call.function;
    }
    return true;
}

} // namespace

CallCounts CallsOf(const std::function<void()>& work)
{
    {
        const CallGate gate(::GetModuleHandleW(nullptr), Count);
        made = 0;
        countedThread = ThisThread();
        work();
        countedThread = 0;
    }
    CallCounts counts;
    for (int i = 0; i < made; ++i) {
        ++counts[calls[i]];
    }
    return counts;
}

} // namespace kestraboot::tests
