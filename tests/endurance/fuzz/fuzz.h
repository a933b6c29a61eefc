// Tests of many generated cases, each checked against a plain model of the expected result.
#pragma once

#include "tests/endurance/fuzz/random.h"

#include <functional>

namespace kestraboot::fuzz
{

/// Makes and checks one case; it must start from scratch, so that its seed alone reproduces it.
using Case = std::function<void(Random&)>;

struct Cases {
    long usual = 1'000;
    long share =
        1; ///< of the number that a long run requests: 10 if a case is so expensive that a tenth will do
};

/// Runs that many cases from a fresh seed, up to the first that fails, and prints the command that
/// repeats that one alone.
///
/// KESTRABOOT_FUZZ_SEED names the seed of the first case (each later one has the next number),
/// KESTRABOOT_FUZZ_CASES another number of cases.
void Fuzz(Cases cases, const Case& oneCase);

} // namespace kestraboot::fuzz
