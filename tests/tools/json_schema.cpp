#include "tests/tools/json_schema.h"

#include <algorithm>
#include <fstream>
#include <regex>
#include <set>
#include <stdexcept>

namespace kestraboot::tests
{
namespace
{

using nlohmann::json;

bool IsOfType(const json& value, const std::string& type)
{
    if (type == "integer") {
        return value.is_number_integer();
    }
    return value.type_name() == type;
}

class Validator
{
public:
    explicit Validator(const json& wholeSchema) : document(wholeSchema) {}

    [[nodiscard]] std::string Check(const json& schema, const json& value, const std::string& at) const
    {
        static const std::set<std::string> known = {
            "$schema",     "$id",      "title",   "description", "$defs",
            "definitions", "$ref",     "oneOf",   "allOf",       "anyOf",
            "not",         "if",       "then",    "else",        "const",
            "enum",        "type",     "pattern", "minimum",     "items",
            "properties",  "required", "maximum", "minLength",   "additionalProperties"};
        for (const auto& [word, meaning] : schema.items()) {
            if (!known.contains(word)) {
                throw std::runtime_error("unknown keyword in the schema: " + word);
            }
        }
        if (schema.contains("$ref")) {
            const std::string target = schema["$ref"].get<std::string>().substr(1); // without "#"
            return Check(document.at(json::json_pointer(target)), value, at);
        }
        if (schema.contains("oneOf")) {
            return CheckOneOf(schema["oneOf"], value, at);
        }
        if (schema.contains("const") && schema["const"] != value) {
            return at + " is " + value.dump() + ", not " + schema["const"].dump();
        }
        if (schema.contains("enum") &&
            std::ranges::find(schema["enum"], value) == schema["enum"].end()) {
            return at + " is " + value.dump() + ", not one of " + schema["enum"].dump();
        }
        if (schema.contains("type") && !HasType(schema["type"], value)) {
            return at + " is " + value.dump() + ", not of type " + schema["type"].dump();
        }
        if (const std::string said = CheckLimits(schema, value, at) + CheckConditions(schema, value, at);
            !said.empty()) {
            return said;
        }
        return value.is_object() ? CheckMembers(schema, value, at) : CheckItems(schema, value, at);
    }

private:
    static bool HasType(const json& types, const json& value)
    {
        return types.is_string() ? IsOfType(value, types)
                                 : std::ranges::any_of(types, [&](const json& type) {
                                       return IsOfType(value, type);
                                   });
    }

    static std::string CheckLimits(const json& schema, const json& value, const std::string& at)
    {
        bool within = true;
        if (value.is_string()) {
            const auto& text = value.get_ref<const std::string&>();
            within = text.size() >= schema.value("minLength", std::size_t{0}) &&
                     std::regex_search(text, std::regex(schema.value("pattern", std::string())));
        } else if (value.is_number()) {
            within = (!schema.contains("minimum") || value >= schema["minimum"]) &&
                     (!schema.contains("maximum") || value <= schema["maximum"]);
        }
        return within ? "" : at + " is outside its limits: " + value.dump();
    }

    std::string CheckConditions(const json& schema, const json& value, const std::string& at) const
    {
        for (const json& part : schema.value("allOf", json::array())) {
            if (const std::string said = Check(part, value, at); !said.empty()) {
                return said;
            }
        }
        const json any = schema.value("anyOf", json::array());
        const auto fits = [&](const json& choice) {
            return Check(choice, value, at).empty();
        };
        if (!any.empty() && std::ranges::none_of(any, fits)) {
            return at + " fits none of the choices";
        }
        if (schema.contains("not") && fits(schema["not"])) {
            return at + " is what it must not be: " + schema["not"].dump();
        }
        if (schema.contains("if")) {
            const char* const branch = fits(schema["if"]) ? "then" : "else";
            return schema.contains(branch) ? Check(schema[branch], value, at) : std::string();
        }
        return {};
    }

    std::string CheckOneOf(const json& choices, const json& value, const std::string& at) const
    {
        std::string wrong;
        int fitting = 0;
        for (const json& choice : choices) {
            const std::string said = Check(choice, value, at);
            fitting += said.empty() ? 1 : 0;
            wrong += said.empty() ? "" : said + "; ";
        }
        return fitting == 1 ? "" : at + " fits " + std::to_string(fitting) + " choices: " + wrong;
    }

    std::string CheckMembers(const json& schema, const json& value, const std::string& at) const
    {
        for (const json& name : schema.value("required", json::array())) {
            if (!value.contains(name.get<std::string>())) {
                return at + " has no member " + name.dump();
            }
        }
        const bool whole = schema.contains("type"); // a condition names only its own members
        const json properties = schema.value("properties", json::object());
        for (const auto& [name, member] : value.items()) {
            if (!properties.contains(name) && !whole) {
                continue;
            }
            if (!properties.contains(name)) {
                return at + " has a member that the schema does not name: " + name;
            }
            const std::string said = Check(properties[name], member, at + "." + name);
            if (!said.empty()) {
                return said;
            }
        }
        return {};
    }

    std::string CheckItems(const json& schema, const json& value, const std::string& at) const
    {
        if (!value.is_array()) {
            return {};
        }
        for (std::size_t i = 0; i < value.size(); ++i) {
            const std::string said = Check(schema.value("items", json::object()), value[i],
                                           at + "[" + std::to_string(i) + "]");
            if (!said.empty()) {
                return said;
            }
        }
        return {};
    }

    const json& document;
};

} // namespace

std::string AgainstSchema(const json& schema, const json& value)
{
    return Validator(schema).Check(schema, value, "it");
}

json ReadSchema(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return json::parse(in);
}

} // namespace kestraboot::tests
