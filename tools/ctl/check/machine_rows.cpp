// Windows, the account, and other facts about the machine.
#include "tools/ctl/check/check.h"
#include "tools/ctl/check/words.h"

namespace kestraboot::tools
{
namespace
{

constexpr const char* kWindows = "windows";
constexpr const char* kAccount = "account";
constexpr const char* kOrganiser = "organiser";
constexpr const char* kDebugOutput = "debug-output";

std::wstring Name(const WindowsVersion& windows)
{
    return L"this program is told Windows " + std::to_wstring(windows.major) + L"." +
           std::to_wstring(windows.minor) + L" (build " + std::to_wstring(windows.build) + L", " +
           (windows.workstation ? L"workstation" : L"server") + L")";
}

} // namespace

WatchedDevices WatchedOn(const WindowsVersion& windows)
{
    const auto is = [&](std::uint32_t major, std::uint32_t minor) {
        return windows.known && windows.major == major && windows.minor == minor;
    };
    const bool xpOrVista = is(5, 1) || (is(6, 0) && windows.workstation);
    const bool any = xpOrVista || is(5, 0);
    return {any, xpOrVista, any};
}

Row WindowsRow(const WindowsVersion& windows)
{
    if (!windows.known) {
        return Suspicious(kWindows, {},
                          L"this program is told no version: device plugins are asked, nothing else",
                          L"see the page of Windows versions");
    }
    const WatchedDevices watched = WatchedOn(windows);
    if (!watched.volumes) {
        return Suspicious(
            kWindows, {},
            Name(windows) + L": device plugins are asked; cards, cameras and scanners are not watched",
            L"a compatibility mode of the boot program (Windows Vista) switches their trackers on; what "
            L"it tells the boot program does not show here");
    }
    std::vector<std::wstring> trackers = {L"drives and cards"};
    if (watched.wia) {
        trackers.push_back(L"WIA");
    }
    trackers.insert(trackers.end(), {L"still images with TWAIN", L"device plugins"});
    return Fine(kWindows, {}, Name(windows) + L": the trackers of " + AndList(trackers) + L" run");
}

Row AccountRow(const Account& account)
{
    if (account.user == kUnknownUser || !account.session.has_value()) {
        return Suspicious(kAccount, {},
                          L"Windows does not report whose settings are shown, or in which session",
                          L"run this program again");
    }
    if (*account.session == 0U) {
        return Suspicious(kAccount, account.user,
                          L"the settings shown are those of " + account.user +
                              L", and the boot programs those of session 0, where nobody works",
                          L"run this program in the session of the user who has the trouble");
    }
    if (!account.loggedOn) {
        return Fine(kAccount, account.user,
                    L"the settings shown are those of " + account.user +
                        L"; Windows does not say who is logged on in this session");
    }
    if (!SameIgnoringCase(account.user, *account.loggedOn)) {
        return Suspicious(kAccount, account.user,
                          L"the settings shown are those of " + account.user + L", not those of " +
                              *account.loggedOn + L", who is logged on",
                          L"run this program as " + *account.loggedOn + L", not as administrator");
    }
    return Fine(kAccount, account.user,
                L"the settings shown are those of " + account.user + L", who is logged on");
}

Row OrganiserRow(const Facts& facts)
{
    if (!facts.report.organiser) {
        return Fine(kOrganiser, {}, L"the legacy organiser is not installed");
    }
    const appInfo_tag& organiser = *facts.report.organiser;
    std::vector<std::wstring> missing;
    if (!facts.organiserPrograms.deviceConnect) {
        missing.push_back(organiser.ProxyPath);
    }
    if (!facts.organiserPrograms.proxy) {
        missing.push_back(organiser.CmdLine);
    }
    if (!missing.empty()) {
        return Broken(kOrganiser, organiser.Name,
                      L"its installation key is there, but not " + AndList(missing),
                      L"install the organiser again, or remove its key "
                      L"SOFTWARE\\Corvane\\Vellumry\\3.0\\Organizer\\ApplicationPath: as long as it is "
                      L"there, a single application starts in mode select");
    }
    return Fine(kOrganiser, organiser.Name,
                L"installed, both programs are there; it counts as one more application");
}

Row DebugOutputRow(std::optional<bool> isRead)
{
    if (!isRead) {
        return Suspicious(kDebugOutput, {},
                          L"Windows does not report whether a program reads the debug output of this "
                          L"session",
                          L"run this program again");
    }
    if (*isRead) {
        return Suspicious(kDebugOutput, {},
                          L"a program reads the debug output of this session: kestratrace cannot, and "
                          L"every line that the library writes waits for that program",
                          L"end the viewer that is not needed");
    }
    return Fine(kDebugOutput, {}, L"no program reads the debug output of this session");
}

} // namespace kestraboot::tools
