#pragma once

namespace kestraboot::tools
{

/// The "schema" of each JSON object, which docs/kestractl.schema.json describes. It changes when a
/// member is removed or changes its meaning, not when one is added.
inline constexpr int kJsonSchema = 1;

} // namespace kestraboot::tools
