#include "tools/common/utf8.h"
#include "tools/ctl/json_head.h"
#include "tools/ctl/report_format.h"

#include <nlohmann/json.hpp>

namespace kestraboot::tools
{
namespace
{

using Json = nlohmann::ordered_json;

Json TextOrNull(const std::optional<std::wstring>& text)
{
    return text ? Json(ToUtf8(*text)) : Json();
}

Json InfoJson(const appInfo_tag& info)
{
    Json formats = Json::array();
    for (const formatInfo_tag& format : info.FileFormats) {
        formats.push_back(
            {{"extension", ToUtf8(format.Extension)}, {"mediaType", ToUtf8(format.MediaType)}});
    }
    return {{"name", ToUtf8(info.Name)},       {"application", ToUtf8(info.CmdLine)},
            {"proxy", ToUtf8(info.ProxyPath)}, {"description", ToUtf8(info.Desc)},
            {"icon", ToUtf8(info.Icon)},       {"formats", std::move(formats)}};
}

Json ApplicationJson(const ListedApplication& application)
{
    Json object = InfoJson(application.info);
    object["key"] = ToUtf8(application.info.KeyPath);
    object["default"] = application.info.DefaultFlag != 0;
    object["mayLaunch"] = application.mayLaunch;
    object["locale"] = ToUtf8(application.locale);
    object["localeSet"] = application.localeStored;
    object["sniffDepth"] = application.key.sniffDepth ? Json(*application.key.sniffDepth) : Json();
    return object;
}

Json LeftOutJson(const LeftOutApplication& left)
{
    Json reasons = Json::array();
    for (const Reason& reason : left.reasons) {
        reasons.push_back({{"reason", reason.code}, {"text", ToUtf8(reason.text)}});
    }
    return {{"name", TextOrNull(left.key.name)},
            {"key", ToUtf8(left.key.path)},
            {"application", TextOrNull(left.key.commandPath)},
            {"applicationExists", left.key.commandExists},
            {"proxy", TextOrNull(left.key.proxyPath)},
            {"proxyExists", left.key.proxyExists},
            {"reasons", std::move(reasons)}};
}

Json AutoRunJson(const Report& report)
{
    if (!report.autoRun) {
        return {};
    }
    return {{"entry", ToUtf8(*report.autoRun)},
            {"exists", report.autoRunExists},
            {"application", TextOrNull(report.autoRunApplication)}};
}

Json NextJson(const std::optional<NextLaunch>& next)
{
    if (!next) {
        return {};
    }
    return {{"application", ToUtf8(next->application)}, {"mode", ToUtf8(next->mode)}};
}

} // namespace

std::string ReportJson(const Report& report)
{
    Json object = JsonHead("report");
    Json& applications = object["applications"] = Json::array();
    for (const ListedApplication& application : report.applications) {
        applications.push_back(ApplicationJson(application));
    }
    Json& leftOut = object["leftOut"] = Json::array();
    for (const LeftOutApplication& left : report.leftOut) {
        leftOut.push_back(LeftOutJson(left));
    }
    Json& defaults = object["defaults"] = Json::array();
    for (const std::wstring& name : report.defaults) {
        defaults.push_back(ToUtf8(name));
    }
    object["arrivalStarts"] = NextJson(report.next);
    object["cardStarts"] = NextJson(report.nextOfCard);
    object["autoRun"] = AutoRunJson(report);
    object["organiser"] = report.organiser ? InfoJson(*report.organiser) : Json();
    return object.dump();
}

} // namespace kestraboot::tools
