// Loading the list of applications, and the queries on it.
#include "kestraboot/information_handler.h"
#include "legacy/auto_launch.h"
#include "legacy/organiser.h"
#include "registry/application_record.h"
#include "registry/application_search.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <shlwapi.h>
#include <utility>

using namespace kestraboot;

void CKestraBootInformationHandler::LoadInformation()
{
    std::vector<appInfo_tag> collected = CollectApplicationKeys();
    applications.clear();
    for (appInfo_tag& record : collected) {
        if (::PathFileExistsW(record.CmdLine.c_str()) && ::PathFileExistsW(record.ProxyPath.c_str()) &&
            IsAutoLaunchAllowed(record.KeyPath)) {
            applications.push_back(std::move(record));
        }
    }
}

bool CKestraBootInformationHandler::GetAllApplicationInfo(std::vector<appInfo_tag>& all)
{
    if (&all == &applications) {
        return true;
    }
    try {
        std::vector<appInfo_tag> copy = applications;
        all.swap(copy);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool CKestraBootInformationHandler::GetApplicationInfo(std::wstring& name, appInfo_tag& out) const
{
    const auto found = std::ranges::find(applications, name, &appInfo_tag::Name);
    if (found == applications.end()) {
        return false;
    }
    try {
        appInfo_tag copy = *found;
        out = std::move(copy);
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool CKestraBootInformationHandler::GetDefaultApplicationInfo(std::vector<appInfo_tag>& defaults) const
{
    try {
        std::vector<appInfo_tag> copies;
        std::ranges::copy_if(applications, std::back_inserter(copies),
                             [](const appInfo_tag& application) {
                                 return application.DefaultFlag != 0;
                             });
        defaults.reserve(defaults.size() + copies.size());
        std::ranges::move(copies, std::back_inserter(defaults));
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

bool CKestraBootInformationHandler::GetVel3Info(appInfo_tag& record)
{
    return ReadOrganiserInfo(record);
}

void CKestraBootInformationHandler::StartVel3AutoLaunch()
{
    StartOrganiserAutoLaunch();
}

void CKestraBootInformationHandler::StopVel3AutoLaunch()
{
    StopOrganiserAutoLaunch();
}
