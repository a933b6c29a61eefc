// The registered applications: those that are listed, and those that are left out.
#include "tools/ctl/check/check.h"
#include "tools/ctl/check/words.h"

#include <algorithm>

namespace kestraboot::tools
{
namespace
{

constexpr const char* kApplication = "application";

std::wstring NameOf(const std::wstring& name, const std::wstring& key)
{
    return name.empty() ? key : name;
}

Row ListedRow(const ListedApplication& application, const ApplicationVersions& versions)
{
    const std::wstring subject = NameOf(application.info.Name, application.info.KeyPath);
    if (!application.mayLaunch) {
        return Suspicious(
            kApplication, subject,
            L"is listed, but \"kestralaunchstatus\" is 0 for this user: its boot program is "
            L"told not to launch",
            L"delete the value, if it is to launch");
    }
    return Fine(kApplication, subject,
                L"is listed: " + application.info.CmdLine + L", " + VersionText(versions.command) +
                    L"; boot program " + application.info.ProxyPath + L", " +
                    VersionText(versions.proxy));
}

std::wstring AdviceOf(const Reason& reason)
{
    const std::string code = reason.code;
    if (code == "kept-out") {
        return L"set the value to 0, if it is to be listed";
    }
    if (code == "key-name-in-other-case" || code == "below-another") {
        return L"its installer must write the key \"Corvane Kestrafetch\" below a key of its own";
    }
    if (code == "behind-long-name") {
        return L"remove the key with the long name";
    }
    return L"install it again, or remove its key";
}

std::wstring Joined(const std::vector<std::wstring>& sentences)
{
    std::wstring text;
    for (const std::wstring& sentence : sentences) {
        text += (text.empty() ? L"" : L"; ") + sentence;
    }
    return text;
}

Row LeftOutRow(const LeftOutApplication& left)
{
    const std::wstring subject = NameOf(left.key.name.value_or(L""), left.key.path);
    if (left.reasons.empty()) {
        return Suspicious(kApplication, subject,
                          L"is registered, but left out; everything that it needs is there",
                          L"run this program again: it may just have been installed");
    }
    std::wstring why;
    std::vector<std::wstring> advice; // each once
    for (const Reason& reason : left.reasons) {
        why += (why.empty() ? L"" : L"; ") + reason.text;
        const std::wstring next = AdviceOf(reason);
        if (std::ranges::find(advice, next) == advice.end()) {
            advice.push_back(next);
        }
    }
    const std::wstring text = L"is registered, but left out: " + why;
    const bool asWished = left.reasons.size() == 1 && std::string(left.reasons[0].code) == "kept-out";
    return asWished ? Suspicious(kApplication, subject, text, Joined(advice))
                    : Broken(kApplication, subject, text, Joined(advice));
}

bool IsRegistered(const Report& report, const ApplicationKey& key)
{
    return std::ranges::any_of(report.applications,
                               [&](const ListedApplication& listed) {
                                   return listed.info.KeyPath == key.path;
                               }) ||
           std::ranges::any_of(report.leftOut, [&](const LeftOutApplication& left) {
               return left.key.path == key.path;
           });
}

} // namespace

Rows ApplicationRows(const Facts& facts)
{
    const Report& report = facts.report;
    Rows rows;
    if (report.applications.empty()) {
        rows.push_back(Broken(kApplication, {},
                              L"no application is listed: a boot program that finds this ends, and "
                              L"removes the auto-run entry if it may write to HKEY_LOCAL_MACHINE",
                              L"install an application, or fix one that is left out"));
    }
    for (std::size_t i = 0; i < report.applications.size(); ++i) {
        rows.push_back(ListedRow(report.applications[i],
                                 i < facts.versions.size() ? facts.versions[i] : ApplicationVersions{}));
    }
    for (const LeftOutApplication& left : report.leftOut) {
        rows.push_back(LeftOutRow(left));
    }
    for (const ApplicationKey& key : facts.keysOf32Bit) {
        if (!IsRegistered(report, key)) { // an installer may write both
            rows.push_back(Broken(kApplication, NameOf(key.name.value_or(L""), key.path),
                                  L"is registered in the 32-bit view of the registry (" + key.path +
                                      L"), where the library does not search",
                                  L"its installer must write to the 64-bit view (KEY_WOW64_64KEY)"));
        }
    }
    return rows;
}

} // namespace kestraboot::tools
