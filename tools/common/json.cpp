#include "tools/common/json.h"

namespace kestraboot::tools
{
namespace
{

void AppendEscaped(std::string& text, char character)
{
    constexpr const char* kDigits = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(character);
    switch (character) {
    case '"':
    case '\\':
        text += '\\';
        text += character;
        return;
    case '\n':
        text += "\\n";
        return;
    case '\r':
        text += "\\r";
        return;
    case '\t':
        text += "\\t";
        return;
    default:
        if (code < 0x20 || code == 0x7F) {
            text += "\\u00";
            text += kDigits[code >> 4];
            text += kDigits[code & 0xF];
        } else {
            text += character;
        }
    }
}

} // namespace

std::string JsonText(std::string_view text)
{
    std::string json = "\"";
    for (const char character : text) {
        AppendEscaped(json, character);
    }
    return json + '"';
}

std::string JsonArray(const std::vector<std::string>& elements)
{
    std::string json = "[";
    for (const std::string& element : elements) {
        json += (json.size() > 1 ? "," : "") + element;
    }
    return json + ']';
}

JsonObject& JsonObject::Text(std::string_view name, std::string_view value)
{
    return Json(name, JsonText(value));
}

JsonObject& JsonObject::Number(std::string_view name, std::int64_t value)
{
    return Json(name, std::to_string(value));
}

JsonObject& JsonObject::Flag(std::string_view name, bool value)
{
    return Json(name, value ? "true" : "false");
}

JsonObject& JsonObject::Null(std::string_view name)
{
    return Json(name, "null");
}

JsonObject& JsonObject::Json(std::string_view name, std::string_view value)
{
    members += (members.empty() ? "" : ",") + JsonText(name) + ':';
    members += value;
    return *this;
}

} // namespace kestraboot::tools
