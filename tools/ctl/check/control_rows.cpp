// The boot program in control, the one that the next log-on starts, and the files beside it.
#include "tools/ctl/auto_run.h"
#include "tools/ctl/check/check.h"
#include "tools/ctl/check/words.h"

#include <algorithm>

namespace kestraboot::tools
{
namespace
{

constexpr const char* kControl = "control";
constexpr const char* kAutoRun = "auto-run";
constexpr const char* kOem = "oem-file";

constexpr const wchar_t* kStartOne = L"log on again, or start the boot program of an application";

Row ProcessRow(const Facts& facts, const BootProcess& process)
{
    const std::wstring who = L"process " + std::to_wstring(process.id);
    if (!process.path || !process.account) {
        return Suspicious(kControl, who,
                          L"has control, and cannot be inspected: it runs as another account, or with "
                          L"more privileges than this program",
                          L"run kestractl as administrator to see which it is; log off and on again to "
                          L"have it started by the auto-run entry");
    }
    std::vector<std::wstring> odd;
    if (facts.account.user != kUnknownUser && !SameIgnoringCase(*process.account, facts.account.user)) {
        odd.push_back(L"runs as " + *process.account + L", with that account's settings, not those of " +
                      facts.account.user);
    }
    if (process.elevated) {
        odd.push_back(L"was started elevated, and so is every application that it starts");
    }
    if (OwnerOfProxy(facts.report.applications, *process.path) == nullptr) {
        odd.push_back(L"is the boot program of no listed application, so that \"SniffDepth\", launch "
                      L"status and locale of none hold");
    }
    if (odd.empty()) {
        return Fine(kControl, *process.path, L"has control (" + who + L")");
    }
    return Suspicious(kControl, *process.path, L"has control (" + who + L"), but " + AndList(odd),
                      process.elevated
                          ? L"end it, and log on again: the auto-run entry starts it as the "
                            L"user who logs on"
                          : L"end it, and start the boot program of an application, as the "
                            L"user who has the trouble");
}

Row NobodyRow(const Facts& facts)
{
    if (facts.account.session == 0U) {
        return Suspicious(kControl, {},
                          L"no boot program has control in session 0: none is expected there",
                          L"run this program in the session of the user who has the trouble");
    }
    return Broken(kControl, {}, L"no boot program has control: nothing notices a device", kStartOne);
}

} // namespace

bool IsInControl(const Control& control)
{
    return control.claimed && !control.processes.empty();
}

std::wstring BootProgramToLookBeside(const Control& control, const Report& report)
{
    for (const BootProcess& process : control.processes) {
        if (process.path) {
            return *process.path;
        }
    }
    if (report.autoRun && report.autoRunExists) {
        return AutoRunProgram(*report.autoRun);
    }
    return report.applications.empty() ? std::wstring() : report.applications.front().info.ProxyPath;
}

Rows ControlRows(const Facts& facts)
{
    const Control& control = facts.control;
    if (!control.known && (!control.claimed || control.processes.empty())) {
        return {Suspicious(kControl, {}, L"Windows does not report which boot program has control",
                           L"run this program again")};
    }
    if (!control.claimed && control.processes.empty()) {
        return {NobodyRow(facts)};
    }
    if (control.processes.empty()) {
        return {Suspicious(kControl, {},
                           L"a program has control that has no window of a boot program and is not "
                           L"registered: it is not known which",
                           L"see which host was installed by hand, and end it")};
    }
    if (!control.claimed) {
        return {Suspicious(kControl, L"process " + std::to_wstring(control.processes.front().id),
                           L"has the window of a boot program, but nobody holds control: it starts or "
                           L"ends right now, or is no boot program",
                           L"run this program again")};
    }
    Rows rows;
    for (const BootProcess& process : control.processes) {
        rows.push_back(ProcessRow(facts, process));
    }
    return rows;
}

Row AutoRunRow(const Facts& facts)
{
    const Report& report = facts.report;
    if (!report.autoRun) {
        return Broken(kAutoRun, {}, L"there is no auto-run entry: nothing starts at log-on", kStartOne);
    }
    const std::wstring program = AutoRunProgram(*report.autoRun);
    if (!report.autoRunExists) {
        return Broken(kAutoRun, program, L"the auto-run entry names this file, which does not exist",
                      L"start the boot program of an application: it writes the entry again, if it may "
                      L"write to HKEY_LOCAL_MACHINE");
    }
    if (facts.autoRunSwitchedOff) {
        return Broken(kAutoRun, program,
                      L"is switched off in Windows' list of start-up programs: it does not start at "
                      L"log-on",
                      L"switch \"Corvane Kestrafetch\" on in the Task Manager, under Startup");
    }
    if (!report.autoRunApplication) {
        return Suspicious(kAutoRun, program,
                          L"starts at log-on, and is the boot program of no listed application",
                          L"install its application again; or start the boot program of another one, "
                          L"which then takes the entry");
    }
    return Fine(kAutoRun, program,
                L"starts at log-on, the boot program of " + *report.autoRunApplication);
}

Row OemRow(const BootFolder& boot, bool inControl)
{
    const OemFile& oem = boot.oem;
    const std::wstring file = boot.program.substr(0, boot.program.rfind(L'\\') + 1) + L"OEM\\album.ini";
    if (!oem.exists) {
        return Fine(kOem, file, L"is not there: the usual case");
    }
    if (!oem.firstLine) {
        return Fine(kOem, file,
                    L"has nothing in its section KestraProxyStopInstall: it forbids nothing");
    }
    const std::wstring line = L"the first line of its section KestraProxyStopInstall is " +
                              InQuotes(*oem.firstLine) + L", which counts as the number " +
                              std::to_wstring(oem.number);
    const wchar_t* const allow = L"empty that section, if the product is to run";
    if (oem.number != 1) {
        return Fine(kOem, file, line + L": it forbids nothing");
    }
    if (inControl) {
        return Suspicious(kOem, file,
                          line + L": the boot program runs, but gives up control at its next start",
                          allow);
    }
    return Broken(kOem, file, line + L": the boot program gives up control at once and ends", allow);
}

} // namespace kestraboot::tools
