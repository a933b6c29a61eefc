#include "tools/common/utf8.h"
#include "tools/ctl/check/check_format.h"
#include "tools/ctl/json_head.h"

#include <nlohmann/json.hpp>

namespace kestraboot::tools
{
namespace
{

using Json = nlohmann::ordered_json;

const char* Word(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Fine:
        return "fine";
    case Verdict::Suspicious:
        return "suspicious";
    default:
        return "broken";
    }
}

Json TextOrNull(const std::wstring& text)
{
    return text.empty() ? Json() : Json(ToUtf8(text));
}

} // namespace

std::string CheckJson(const Rows& rows)
{
    Json list = Json::array();
    for (const Row& row : rows) {
        list.push_back({{"verdict", Word(row.verdict)},
                        {"check", row.check},
                        {"subject", TextOrNull(row.subject)},
                        {"reason", ToUtf8(row.reason)},
                        {"advice", TextOrNull(row.advice)}});
    }
    Json object = JsonHead("check");
    object["broken"] = Count(rows, Verdict::Broken);
    object["suspicious"] = Count(rows, Verdict::Suspicious);
    object["fine"] = Count(rows, Verdict::Fine);
    object["rows"] = std::move(list);
    return object.dump();
}

} // namespace kestraboot::tools
