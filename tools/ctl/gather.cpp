#include "tools/ctl/gather.h"

#include "tools/ctl/auto_run.h"
#include "tools/ctl/files.h"
#include "tools/ctl/library_view.h"
#include "tools/ctl/registry_copy.h"
#include "tools/ctl/registry_names.h"

#include <algorithm>

namespace kestraboot::tools
{
namespace
{

void AddApplications(Report& report, const LibraryView& view, const std::vector<ApplicationKey>& keys)
{
    for (const appInfo_tag& info : view.all) {
        const auto key = std::ranges::find(keys, info.KeyPath, &ApplicationKey::path);
        ListedApplication& listed = report.applications.emplace_back();
        listed.info = info;
        if (key != keys.end()) {
            listed.key = *key;
        }
    }
    for (const ApplicationKey& key : keys) {
        if (std::ranges::find(view.all, key.path, &appInfo_tag::KeyPath) == view.all.end()) {
            report.leftOut.push_back({key, WhyLeftOut(key)});
        }
    }
    for (const appInfo_tag& info : view.defaults) {
        report.defaults.push_back(info.Name);
    }
}

std::optional<NextLaunch> WhatStarts(const LibraryView& view)
{
    return WhatAnArrivalStarts(view.all, view.defaults, view.organiser.has_value());
}

void AddAutoRun(Report& report)
{
    report.autoRun = RegistryKey(HKEY_LOCAL_MACHINE, kRunKey).Text(kRunValue);
    if (!report.autoRun) {
        return;
    }
    const std::wstring program = AutoRunProgram(*report.autoRun);
    report.autoRunExists = FileExists(program);
    if (const ListedApplication* const owner = OwnerOfProxy(report.applications, program)) {
        report.autoRunApplication = owner->info.Name;
    }
}

} // namespace

Report Gather()
{
    RegistryCopy copy;
    // First, because the library's loading adds to the copy.
    const std::vector<ApplicationKey> keys = FindApplicationKeys();
    const LibraryView view = AskLibrary();
    Report report;
    AddApplications(report, view, keys);
    AddAutoRun(report);
    report.organiser = view.organiser;
    report.next = WhatStarts(view);
    report.nextOfCard = WhatStarts(AskLibrary());
    AskAsEachProxy(copy, report.applications);
    copy.Close();
    return report;
}

} // namespace kestraboot::tools
