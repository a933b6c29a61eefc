// The library's view, asked through its exported interface. Ask it on a copy of the registry's keys
// only, because the library writes.
#pragma once

#include "tools/ctl/registry_copy.h"
#include "tools/ctl/report.h"

#include <string>
#include <vector>

namespace kestraboot::tools
{

struct LibraryView {
    std::vector<appInfo_tag> all;
    std::vector<appInfo_tag> defaults;
    std::optional<appInfo_tag> organiser;
};

/// Loads once, as for an arrival. The next loading may find other defaults, because a loading can
/// create user's keys.
[[nodiscard]] LibraryView AskLibrary();

/// Asks for the launch status and the locale as the proxy of each application does, and fills them
/// in. The library answers for the running program, so this changes the copy to make this program
/// the proxy of one application after another. The copy is of no use afterwards.
void AskAsEachProxy(RegistryCopy& copy, std::vector<ListedApplication>& applications);

} // namespace kestraboot::tools
