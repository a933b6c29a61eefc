#include "tests/system/imaging/leak_check.h"

#include "tests/system/imaging/resource_use.h"

#include <iostream>

namespace kestraboot::tests
{
namespace
{

// COM opens and drops a few connections as it likes; one handle an operation would be hundreds.
constexpr long kHandlesOfNoise = 10;
// A tenth of a KB an operation, over 10,000 of them.
constexpr long long kBytesOfNoise = 1 << 20;

bool HoldsNoMore(const ResourceUse& after, const ResourceUse& before)
{
    return after.handles - before.handles < kHandlesOfNoise && after.windows <= before.windows &&
           after.gdiObjects <= before.gdiObjects && after.userObjects <= before.userObjects &&
           after.privateBytes - before.privateBytes < kBytesOfNoise;
}

} // namespace

testing::AssertionResult LeavesNothingBehind(HANDLE process, const std::string& what,
                                             const std::function<void()>& operation)
{
    constexpr int kTurns = 4;
    ResourceUse before = ResourceUseOf(process);
    for (int turn = 0; turn < kTurns; ++turn) {
        operation();
        const ResourceUse after = ResourceUseOf(process);
        std::cout << what << ": " << before << " -> " << after << "\n";
        if (HoldsNoMore(after, before)) {
            return testing::AssertionSuccess();
        }
        before = after;
    }
    return testing::AssertionFailure() << what << " leave something behind each time";
}

} // namespace kestraboot::tests
