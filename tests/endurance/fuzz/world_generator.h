#pragma once

#include "tests/endurance/fuzz/application_model.h"
#include "tests/endurance/fuzz/random.h"

namespace kestraboot::fuzz
{

/// A registry as no single installer would leave it: applications at any depth, keys that almost are
/// some, values of every type, size and ending, preferences in either hive, the organiser or not.
[[nodiscard]] World AnyWorld(Random& random);

/// One with a few sound applications and sometimes the organiser, for what is done with them.
[[nodiscard]] World SoundWorld(Random& random);

} // namespace kestraboot::fuzz
