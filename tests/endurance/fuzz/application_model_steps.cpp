// The steps of the model that write, start or print.
#include "tests/endurance/fuzz/application_model.h"

#include <process.h>

namespace kestraboot::fuzz
{
namespace
{

constexpr const wchar_t* kRunKey = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr const wchar_t* kRunValue = L"Corvane Kestrafetch";

} // namespace

const appInfo_tag* ApplicationModel::Own() const
{
    const std::wstring self = world.self.substr(0, 259);
    for (const appInfo_tag& application : applications) {
        if (SameText(application.ProxyPath, self)) {
            return &application;
        }
    }
    return nullptr;
}

void ApplicationModel::MaintainOrder()
{
    Load();
    HiveKey* const run = world.isAdministrators ? world.machine.Find(kRunKey) : nullptr;
    if (applications.empty()) {
        seen.trace.emplace_back(L"<KestraBoot><!!! No Kestra Compatible application found. This "
                                L"situation should be avoided.>");
        if (const auto organiser = Organiser()) {
            const std::wstring& path = organiser->ProxyPath;
            seen.starts.push_back(
                {_P_DETACH, path, {path[0] == L'"' ? path : L'"' + path + L'"', L"-i"}});
        }
        if (run != nullptr) {
            std::erase_if(run->values, [](const HiveValue& value) {
                return SameText(value.name, kRunValue);
            });
        }
        seen.trace.emplace_back(
            L"<KestraBoot><Deleting run key. Auto run is going to discontinue from now onwards.>");
        throw ProcessEnded();
    }
    const appInfo_tag* const own = Own();
    const std::wstring proxy = own != nullptr ? own->ProxyPath : applications[0].ProxyPath;
    if (run != nullptr) {
        run->PutText(kRunValue, proxy[0] == L'"' ? proxy : L'"' + proxy + L'"');
    }
}

void ApplicationModel::WriteDefault(const appInfo_tag& application, std::uint32_t flag)
{
    for (Hive* const hive : {&world.user, &world.machine}) {
        HiveKey* const preferences = hive->Find(application.KeyPath + L"\\Preferences");
        if (preferences != nullptr && (hive == &world.user || world.isAdministrators)) {
            preferences->PutDword(L"DefaultFlag", flag);
        }
    }
}

bool ApplicationModel::SetDefaultStatus(const std::wstring& name, const std::wstring& value)
{
    MaintainOrder();
    const appInfo_tag* const named = Named(name);
    if (named == nullptr) {
        console += "\n !!! Invalid first argument value."
                   "\n !!! This application is not registered as Kestra compatible.";
        return false;
    }
    if (SameText(value, L"yes")) {
        for (const appInfo_tag& application : applications) {
            WriteDefault(application, 0);
        }
        WriteDefault(*named, 1);
    } else if (SameText(value, L"no")) {
        WriteDefault(*named, 0);
    } else {
        console += "\n !!! Invalid second argument value.";
        return false;
    }
    MaintainOrder();
    return true;
}

std::optional<std::wstring> ApplicationModel::OwnKey()
{
    MaintainOrder();
    const appInfo_tag* const own = Own();
    if (own == nullptr) {
        return std::nullopt;
    }
    return own->KeyPath.substr(0, own->KeyPath.find(L"\\Corvane Kestrafetch"));
}

bool ApplicationModel::LaunchStatus()
{
    const auto key = OwnKey();
    return !key || NumberOf(world.user.Find(*key), L"kestralaunchstatus") != 0U;
}

bool ApplicationModel::SetLaunchStatus(std::int32_t status)
{
    const auto path = OwnKey();
    HiveKey* const key = path ? world.user.Find(*path) : nullptr;
    if (key == nullptr) {
        return false;
    }
    key->PutDword(L"kestralaunchstatus", static_cast<std::uint32_t>(status));
    return true;
}

std::optional<std::wstring> ApplicationModel::Locale()
{
    const auto path = OwnKey();
    const auto text = path ? TextOf(world.machine.Find(*path), L"locale") : std::nullopt;
    return text && !text->empty() ? text : std::nullopt;
}

int ApplicationModel::SniffDepth()
{
    MaintainOrder();
    const appInfo_tag* const own = Own();
    const auto depth =
        own == nullptr ? std::nullopt : NumberOf(world.user.Find(own->KeyPath), L"SniffDepth");
    return depth && *depth < 0x80000000 ? static_cast<int>(*depth) : 4;
}

std::wstring Shown(const std::vector<formatInfo_tag>& formats)
{
    std::wstring shown;
    for (const formatInfo_tag& format : formats) {
        shown += format.MediaType + L' ' + format.Extension + L", ";
    }
    return shown;
}

std::wstring Shown(const appInfo_tag& application)
{
    return L"Name " + application.Name + L"; ProxyPath " + application.ProxyPath + L"; Desc " +
           application.Desc + L"; CmdLine " + application.CmdLine + L"; Icon " + application.Icon +
           L"; KeyPath " + application.KeyPath + L"; DefaultFlag " +
           std::to_wstring(application.DefaultFlag) + L"; SpareFlag " +
           std::to_wstring(application.SpareFlag) + L"; formats " + Shown(application.FileFormats);
}

std::vector<std::wstring> Shown(const std::vector<appInfo_tag>& applications)
{
    std::vector<std::wstring> shown;
    for (const appInfo_tag& application : applications) {
        shown.push_back(Shown(application));
    }
    return shown;
}

} // namespace kestraboot::fuzz
