#include "tools/common/json.h"
#include "tools/common/utf8.h"
#include "tools/ctl/report_format.h"

namespace kestraboot::tools
{
namespace
{

JsonObject InfoObject(const appInfo_tag& info)
{
    std::vector<std::string> formats;
    for (const formatInfo_tag& format : info.FileFormats) {
        JsonObject object;
        object.Text("extension", ToUtf8(format.Extension)).Text("mediaType", ToUtf8(format.MediaType));
        formats.push_back(object.Line());
    }
    JsonObject object;
    object.Text("name", ToUtf8(info.Name))
        .Text("application", ToUtf8(info.CmdLine))
        .Text("proxy", ToUtf8(info.ProxyPath))
        .Text("description", ToUtf8(info.Desc))
        .Text("icon", ToUtf8(info.Icon))
        .Json("formats", JsonArray(formats));
    return object;
}

void AddText(JsonObject& object, const char* name, const std::optional<std::wstring>& text)
{
    if (text) {
        object.Text(name, ToUtf8(*text));
    } else {
        object.Null(name);
    }
}

std::string ApplicationJson(const ListedApplication& application)
{
    JsonObject object = InfoObject(application.info);
    object.Text("key", ToUtf8(application.info.KeyPath))
        .Flag("default", application.info.DefaultFlag != 0)
        .Flag("mayLaunch", application.mayLaunch)
        .Text("locale", ToUtf8(application.locale))
        .Flag("localeSet", application.localeStored);
    if (application.sniffDepth) {
        object.Number("sniffDepth", *application.sniffDepth);
    } else {
        object.Null("sniffDepth");
    }
    return object.Line();
}

std::string LeftOutJson(const LeftOutApplication& left)
{
    std::vector<std::string> reasons;
    for (const Reason& reason : left.reasons) {
        JsonObject object;
        object.Text("reason", reason.code).Text("text", ToUtf8(reason.text));
        reasons.push_back(object.Line());
    }
    JsonObject object;
    AddText(object, "name", left.key.name);
    object.Text("key", ToUtf8(left.key.path));
    AddText(object, "application", left.key.commandPath);
    object.Flag("applicationExists", left.key.commandExists);
    AddText(object, "proxy", left.key.proxyPath);
    object.Flag("proxyExists", left.key.proxyExists).Json("reasons", JsonArray(reasons));
    return object.Line();
}

std::string AutoRunJson(const Report& report)
{
    if (!report.autoRun) {
        return "null";
    }
    JsonObject object;
    object.Text("entry", ToUtf8(*report.autoRun)).Flag("exists", report.autoRunExists);
    AddText(object, "application", report.autoRunApplication);
    return object.Line();
}

std::string NextJson(const std::optional<NextLaunch>& next)
{
    if (!next) {
        return "null";
    }
    JsonObject object;
    object.Text("application", ToUtf8(next->application)).Text("mode", ToUtf8(next->mode));
    return object.Line();
}

} // namespace

std::string ReportJson(const Report& report)
{
    std::vector<std::string> applications;
    for (const ListedApplication& application : report.applications) {
        applications.push_back(ApplicationJson(application));
    }
    std::vector<std::string> leftOut;
    for (const LeftOutApplication& left : report.leftOut) {
        leftOut.push_back(LeftOutJson(left));
    }
    std::vector<std::string> defaults;
    for (const std::wstring& name : report.defaults) {
        defaults.push_back(JsonText(ToUtf8(name)));
    }
    JsonObject object;
    object.Json("applications", JsonArray(applications))
        .Json("leftOut", JsonArray(leftOut))
        .Json("defaults", JsonArray(defaults))
        .Json("arrivalStarts", NextJson(report.next))
        .Json("cardStarts", NextJson(report.nextOfCard))
        .Json("autoRun", AutoRunJson(report))
        .Json("organiser", report.organiser ? InfoObject(*report.organiser).Line() : "null");
    return object.Line();
}

} // namespace kestraboot::tools
