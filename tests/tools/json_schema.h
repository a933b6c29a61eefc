// As much of JSON Schema as the pages' schemas use, read strictly.
#pragma once

#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>

namespace kestraboot::tests
{

/// What is wrong first with `value`, and where; empty where nothing is. A member that the schema does
/// not name is wrong, and a word of the schema that this does not know throws std::runtime_error.
[[nodiscard]] std::string AgainstSchema(const nlohmann::json& schema, const nlohmann::json& value);

/// Of a file.
[[nodiscard]] nlohmann::json ReadSchema(const std::filesystem::path& path);

} // namespace kestraboot::tests
