#include "tests/system/imaging/leak_check.h"

#include "tests/system/imaging/resource_use.h"

#include <iostream>

namespace kestraboot::tests
{
namespace
{

// COM opens and closes a few connections of its own, and the heap grows by 64 KB at a time.
constexpr long kHandlesOfNoise = 4;
constexpr long long kBytesOfNoise = 256 * 1024;

/// The names of the resources that grew by more than noise; empty if none did.
std::string Grown(const ResourceUse& after, const ResourceUse& before)
{
    std::string grown;
    const auto name = [&](bool more, const char* what) {
        grown += more ? std::string(grown.empty() ? "" : ", ") + what : "";
    };
    name(after.handles - before.handles > kHandlesOfNoise, "handles");
    name(after.threads > before.threads, "threads");
    name(after.windows > before.windows, "windows");
    name(after.gdiObjects > before.gdiObjects, "GDI objects");
    name(after.userObjects > before.userObjects, "USER objects");
    name(after.privateBytes - before.privateBytes > kBytesOfNoise, "memory");
    return grown;
}

} // namespace

testing::AssertionResult LeavesNothingBehind(HANDLE process, const std::string& what,
                                             const std::function<void()>& operation)
{
    constexpr int kTurns = 4;
    std::string grown;
    ResourceUse before = ResourceUseOf(process);
    for (int turn = 0; turn < kTurns; ++turn) {
        operation();
        const ResourceUse after = ResourceUseOf(process);
        std::cout << what << ": " << before << " -> " << after << "\n";
        grown = Grown(after, before);
        if (grown.empty()) {
            return testing::AssertionSuccess();
        }
        before = after;
    }
    return testing::AssertionFailure() << what << " leak each time: " << grown;
}

} // namespace kestraboot::tests
