#include "tests/tools/json_schema.h"

#include <algorithm>
#include <fstream>
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
    explicit Validator(const json& wholeSchema) : whole(wholeSchema) {}

    [[nodiscard]] std::string Check(const json& schema, const json& value, const std::string& at) const
    {
        static const std::set<std::string> known = {"$schema", "title",      "description", "$defs",
                                                    "$ref",    "oneOf",      "const",       "enum",
                                                    "type",    "properties", "required",    "items"};
        for (const auto& [word, meaning] : schema.items()) {
            if (!known.contains(word)) {
                throw std::runtime_error("a word of the schema that is not known: " + word);
            }
        }
        if (schema.contains("$ref")) {
            const std::string target = schema["$ref"].get<std::string>().substr(1); // without "#"
            return Check(whole.at(json::json_pointer(target)), value, at);
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
        for (const auto& [name, member] : value.items()) {
            const json& properties = schema.at("properties");
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
            const std::string said =
                Check(schema.at("items"), value[i], at + "[" + std::to_string(i) + "]");
            if (!said.empty()) {
                return said;
            }
        }
        return {};
    }

    const json& whole;
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
