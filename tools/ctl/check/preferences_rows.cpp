// The defaults, and the users' own settings.
#include "tools/ctl/check/check.h"
#include "tools/ctl/check/words.h"

#include <algorithm>

namespace kestraboot::tools
{
namespace
{

constexpr const char* kDefault = "default";
constexpr const char* kFormats = "formats";
constexpr const char* kPreferences = "preferences";
constexpr const char* kSniffDepth = "sniff-depth";

constexpr std::wstring_view kRoot = L"SOFTWARE\\Corvane\\";

bool CanBecomeUsers(const Facts& facts, const ListedApplication& application)
{
    return application.key.userHasPreferences ||
           (facts.userHasRoot && !LosesLetters(application.info.KeyPath));
}

/// The default is the machine's alone, and ends when the library creates the user's own flag.
bool CountsOnce(const Facts& facts, const ListedApplication& application)
{
    return application.info.DefaultFlag != 0 && !application.key.userHasPreferences &&
           CanBecomeUsers(facts, application);
}

Row DefaultRow(const Report& report)
{
    const std::vector<std::wstring>& defaults = report.defaults;
    if (defaults.size() > 1) {
        return Suspicious(kDefault, {},
                          AndList(defaults) + L" are all defaults: that counts like none, and " +
                              report.applications.front().info.Name + L" starts in mode select",
                          L"leave one: kestraboot.exe -default \"NAME\" no for the others");
    }
    if (defaults.size() == 1) {
        return Fine(kDefault, defaults.front(), L"is the default: it starts in mode direct");
    }
    if (!report.next) {
        return Fine(kDefault, {}, L"there is no default, and no application");
    }
    return Fine(kDefault, {},
                L"there is no default: " + report.next->application + L" starts in mode " +
                    report.next->mode);
}

/// Whether any extension is searched for on a card.
bool LooksForAnything(const Report& report)
{
    const auto looksFor = [](const appInfo_tag& info) {
        return std::ranges::any_of(info.FileFormats, [](const formatInfo_tag& format) {
            return !SameIgnoringCase(format.MediaType, L"Audio") &&
                   !SameIgnoringCase(format.Extension, L"pdf");
        });
    };
    const bool noDefault = report.defaults.empty();
    return (noDefault && report.organiser && looksFor(*report.organiser)) ||
           std::ranges::any_of(report.applications, [&](const ListedApplication& application) {
               return (noDefault || application.info.DefaultFlag != 0) && looksFor(application.info);
           });
}

} // namespace

bool LosesLetters(const std::wstring& keyPath)
{
    return keyPath.find_first_not_of(kRoot) != kRoot.size();
}

Rows DefaultRows(const Facts& facts)
{
    const Report& report = facts.report;
    Rows rows;
    for (const ListedApplication& application : report.applications) {
        if (CountsOnce(facts, application)) {
            rows.push_back(
                Suspicious(kDefault, application.info.Name,
                           L"is a default of the machine alone: that counts once for this user, and for "
                           L"a card not at all",
                           L"make it the user's: kestraboot.exe -default " +
                               InQuotes(application.info.Name) + L" yes"));
        }
    }
    if (rows.empty() || report.defaults.size() > 1) {
        rows.insert(rows.begin(), DefaultRow(report));
    }
    if (!report.applications.empty() && !LooksForAnything(report)) {
        rows.push_back(Broken(kFormats, {},
                              std::wstring(report.defaults.empty() ? L"no application" : L"no default") +
                                  L" handles a kind of picture or film: no card is ever accepted",
                              L"see \"Image\" and \"Video\" below the key \"File Formats\""));
    }
    return rows;
}

Rows PreferencesRows(const Facts& facts)
{
    Rows rows;
    if (!facts.userHasRoot) {
        rows.push_back(Suspicious(kPreferences, {},
                                  L"HKEY_CURRENT_USER\\SOFTWARE\\Corvane is not there: this user has no "
                                  L"place for a default of their own",
                                  L"make that key: installers of applications do"));
    }
    for (const ListedApplication& application : facts.report.applications) {
        const std::wstring& name = application.info.Name;
        if (LosesLetters(application.info.KeyPath) && !application.key.userHasPreferences) {
            rows.push_back(Suspicious(
                kPreferences, name,
                L"its key below SOFTWARE\\Corvane begins with one of the letters that the library takes "
                L"off: it never makes this user's preferences, and -default does not hold for the user",
                L"make the key HKEY_CURRENT_USER\\" + application.info.KeyPath + L"\\Preferences"));
        }
        if (application.key.sniffDepth == 0U) {
            rows.push_back(Suspicious(kSniffDepth, name,
                                      L"\"SniffDepth\" is 0 for this user: its boot program accepts no "
                                      L"card",
                                      L"delete the value, or set it to 1 or more"));
        }
    }
    if (rows.empty() && !facts.report.applications.empty()) {
        rows.push_back(Fine(kPreferences, {},
                            L"every application can have preferences of this user, and none switches "
                            L"cards off"));
    }
    return rows;
}

} // namespace kestraboot::tools
