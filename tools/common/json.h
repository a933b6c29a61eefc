// The little of JSON that these programs write: objects on one line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kestraboot::tools
{

/// A JSON string, quotes included, of valid UTF-8.
[[nodiscard]] std::string JsonText(std::string_view text);

/// Of elements that are JSON already.
[[nodiscard]] std::string JsonArray(const std::vector<std::string>& elements);

/// Members in the order in which they are added.
class JsonObject
{
public:
    JsonObject& Text(std::string_view name, std::string_view value);
    JsonObject& Number(std::string_view name, std::int64_t value);
    JsonObject& Flag(std::string_view name, bool value);
    JsonObject& Null(std::string_view name);

    /// A value that is JSON already.
    JsonObject& Json(std::string_view name, std::string_view value);

    [[nodiscard]] std::string Line() const { return '{' + members + '}'; }

private:
    std::string members;
};

} // namespace kestraboot::tools
