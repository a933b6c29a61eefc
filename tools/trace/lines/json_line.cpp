#include "tools/trace/lines/json_line.h"

#include <nlohmann/json.hpp>

namespace kestraboot::tools
{

nlohmann::ordered_json JsonLine(const char* type)
{
    return {{"type", type}, {"schema", kLineSchema}};
}

std::string OneLine(const nlohmann::ordered_json& line)
{
    return line.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

} // namespace kestraboot::tools
