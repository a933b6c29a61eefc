// One JSON object on one line, as docs/kestratrace.schema.json describes it.
#pragma once

#include <nlohmann/json_fwd.hpp>

#include <string>

namespace kestraboot::tools
{

/// Raised if a member is removed or changes its meaning; a new member alone does not raise it.
inline constexpr unsigned kLineSchema = 1;

/// Has the two members with which every line begins.
[[nodiscard]] nlohmann::ordered_json JsonLine(const char* type);

/// Without a line end. Invalid UTF-8 becomes U+FFFD.
[[nodiscard]] std::string OneLine(const nlohmann::ordered_json& line);

} // namespace kestraboot::tools
