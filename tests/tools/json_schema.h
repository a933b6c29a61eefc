// The part of JSON Schema that the pages' schemas use, read strictly.
#pragma once

#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>

namespace kestraboot::tests
{

/// The first error of `value`, with its place; empty if there is none. A member that the schema does not
/// name is an error; a word of the schema that this does not know throws std::runtime_error.
[[nodiscard]] std::string AgainstSchema(const nlohmann::json& schema, const nlohmann::json& value);

/// Of a file.
[[nodiscard]] nlohmann::json ReadSchema(const std::filesystem::path& path);

} // namespace kestraboot::tests
