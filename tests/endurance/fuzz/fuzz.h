// Tests of many made-up cases, each checked against a plain model of what must come out.
#pragma once

#include "tests/endurance/fuzz/random.h"

#include <functional>

namespace kestraboot::fuzz
{

/// Makes and checks one case; it must start from scratch, so that its seed alone brings it back.
using Case = std::function<void(Random&)>;

struct Cases {
    long usual = 1'000;
    long share =
        1; ///< of the number that a long run asks for: 10 where a case is so dear that a tenth will do
};

/// Runs that many cases from a fresh seed, up to the first that fails, and says how to run that one
/// alone.
///
/// KESTRABOOT_FUZZ_SEED names the seed of the first case (each later one has the next number),
/// KESTRABOOT_FUZZ_CASES another number of cases.
void Fuzz(Cases cases, const Case& oneCase);

} // namespace kestraboot::fuzz
