#pragma once

#include "tests/endurance/fuzz/hive.h"
#include "tests/endurance/fuzz/random.h"

namespace kestraboot::fuzz
{

/// Mostly that text as most programs store it; else of another type, without terminator, of an odd size,
/// with zeros inside, or something else altogether.
void PutAnyText(Random& random, HiveKey& key, const std::wstring& name, const std::wstring& text);

/// Mostly a small DWORD; else of another type or size, or with its highest bits set.
void PutAnyNumber(Random& random, HiveKey& key, const std::wstring& name);

} // namespace kestraboot::fuzz
