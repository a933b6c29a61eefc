#pragma once

#include "tests/endurance/fuzz/imaging_model.h"
#include "tests/endurance/fuzz/random.h"

namespace kestraboot::fuzz
{

/// A service with devices of those identifiers and others, whose properties may be anything. Refers to
/// the texts of `ids` as long as it is used.
[[nodiscard]] WiaWorld AnyWia(Random& random, const std::vector<std::wstring>& ids);

/// Hands it to the service that the product meets.
void Become(tests::FakeWiaService& service, const WiaWorld& wia);

} // namespace kestraboot::fuzz
