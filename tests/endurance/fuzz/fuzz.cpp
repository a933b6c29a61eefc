#include "tests/endurance/fuzz/fuzz.h"

#include "tests/support/watchdog.h"

#include <gtest/gtest.h>

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <optional>

namespace kestraboot::fuzz
{
namespace
{

std::optional<std::uint64_t> Number(const char* variable)
{
    const char* const text = std::getenv(variable);
    if (text == nullptr || *text == '\0') {
        return std::nullopt;
    }
    return std::strtoull(text, nullptr, 10);
}

bool Passes(std::uint64_t seed, const Case& oneCase)
{
    Random random(seed);
    try {
        oneCase(random);
    } catch (const std::exception& unexpected) {
        ADD_FAILURE() << "the case threw an exception: " << unexpected.what();
    }
    return !testing::Test::HasFailure();
}

} // namespace

void Fuzz(Cases cases, const Case& oneCase)
{
    const std::uint64_t first = Number("KESTRABOOT_FUZZ_SEED").value_or(std::random_device()());
    const std::optional<std::uint64_t> asked = Number("KESTRABOOT_FUZZ_CASES");
    const long count = asked ? std::max(1L, static_cast<long>(*asked) / cases.share) : cases.usual;

    const ULONGLONG start = ::GetTickCount64();
    ULONGLONG restarted = start;
    for (long i = 0; i < count; ++i) {
        const std::uint64_t seed = first + static_cast<std::uint64_t>(i);
        if (!Passes(seed, oneCase)) {
            ADD_FAILURE() << "case " << i << " of seed " << first
                          << "; to repeat it: KESTRABOOT_FUZZ_SEED=" << seed
                          << " KESTRABOOT_FUZZ_CASES=1 with this test as --gtest_filter";
            return;
        }
        if (const ULONGLONG now = ::GetTickCount64(); now - restarted > 5'000) {
            tests::RestartWatchdog();
            restarted = now;
        }
    }
    const ULONGLONG taken = std::max(1ULL, ::GetTickCount64() - start);
    std::printf("%ld cases from seed %llu, %llu a second\n", count, first,
                static_cast<unsigned long long>(count) * 1000 / taken);
    std::fflush(stdout);
}

} // namespace kestraboot::fuzz
