#pragma once

#include "tests/endurance/fuzz/application_model.h"
#include "tests/endurance/fuzz/random.h"

namespace kestraboot::fuzz
{

/// A registry as no single installer would leave it: applications at any depth, keys that are almost
/// valid ones, values of every type, size and ending, preferences in either hive, the organiser or not.
[[nodiscard]] World AnyWorld(Random& random);

/// One with a few sound applications and sometimes the organiser, for the operations on them.
[[nodiscard]] World SoundWorld(Random& random);

} // namespace kestraboot::fuzz
