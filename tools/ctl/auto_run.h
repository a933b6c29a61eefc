// The application that the auto-run entry names, and the application that an arrival starts.
#pragma once

#include "tools/ctl/report.h"

#include <string>
#include <string_view>
#include <vector>

namespace kestraboot::tools
{

/// The program of the entry, without the quotes around it.
[[nodiscard]] std::wstring AutoRunProgram(std::wstring_view entry);

/// The first application with that proxy, in any case; null if there is none.
[[nodiscard]] const ListedApplication* OwnerOfProxy(const std::vector<ListedApplication>& applications,
                                                    const std::wstring& program);

/// If there is exactly one default, it is started for the device. Otherwise the only application
/// is, or the first of several, in which the user selects. The organiser counts as a further one.
[[nodiscard]] std::optional<NextLaunch> WhatAnArrivalStarts(const std::vector<appInfo_tag>& all,
                                                            const std::vector<appInfo_tag>& defaults,
                                                            bool organiserInstalled);

} // namespace kestraboot::tools
