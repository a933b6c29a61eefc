#include "tools/ctl/auto_run.h"

#include <algorithm>
#include <cwchar>

namespace kestraboot::tools
{

std::wstring AutoRunProgram(std::wstring_view entry)
{
    if (!entry.starts_with(L'"')) {
        return std::wstring(entry);
    }
    entry.remove_prefix(1);
    return std::wstring(entry.substr(0, entry.find(L'"')));
}

const ListedApplication* OwnerOfProxy(const std::vector<ListedApplication>& applications,
                                      const std::wstring& program)
{
    const auto owner = std::ranges::find_if(applications, [&](const ListedApplication& application) {
        return ::_wcsicmp(application.info.ProxyPath.c_str(), program.c_str()) == 0;
    });
    return owner != applications.end() ? &*owner : nullptr;
}

std::optional<NextLaunch> WhatAnArrivalStarts(const std::vector<appInfo_tag>& all,
                                              const std::vector<appInfo_tag>& defaults,
                                              bool organiserInstalled)
{
    if (defaults.size() == 1) {
        return NextLaunch{defaults.front().Name, L"direct"};
    }
    if (all.empty()) {
        return std::nullopt;
    }
    const bool onlyOne = all.size() == 1 && !organiserInstalled;
    return NextLaunch{all.front().Name, onlyOne ? L"direct" : L"select"};
}

} // namespace kestraboot::tools
