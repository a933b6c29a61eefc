// One JSON object on one line, as docs/kestratrace.schema.json describes it.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace kestraboot::tools
{

/// Raised whenever a member goes or changes its meaning; a new one alone does not raise it.
inline constexpr unsigned kJsonSchema = 1;

/// With the two members that every line begins with.
[[nodiscard]] nlohmann::ordered_json JsonLine(const char* type);

/// Without a line end. What is not valid UTF-8 becomes U+FFFD.
[[nodiscard]] std::string OneLine(const nlohmann::ordered_json& line);

} // namespace kestraboot::tools
