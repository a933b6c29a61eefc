// Whom the machine's auto-run entry names, and what an arrival starts.
#pragma once

#include "tools/ctl/report.h"

#include <string>
#include <string_view>
#include <vector>

namespace kestraboot::tools
{

/// The program of the entry, without the quotes around it.
[[nodiscard]] std::wstring AutoRunProgram(std::wstring_view entry);

/// The first application whose proxy that is; null where there is none. Case does not matter.
[[nodiscard]] const ListedApplication* OwnerOfProxy(const std::vector<ListedApplication>& applications,
                                                    const std::wstring& program);

/// One default is started for the device; without one, the only application is, or the first of several,
/// in which the user selects. The organiser counts as another one.
[[nodiscard]] std::optional<NextLaunch> WhatAnArrivalStarts(const std::vector<appInfo_tag>& all,
                                                            const std::vector<appInfo_tag>& defaults,
                                                            bool organiserInstalled);

} // namespace kestraboot::tools
