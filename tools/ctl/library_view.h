// What the library sees, asked through its exported interface. To be asked on a copy of the registry's
// keys only: the library writes.
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

/// Loads once, as for an arrival; the next loading may find other defaults, since one can make user's
/// keys.
[[nodiscard]] LibraryView AskLibrary();

/// Asks for the launch status and the locale as the proxy of each application does, and fills them in.
/// The library answers for the running program: the copy is changed to make this program the proxy of
/// one application after the other. Nothing can be learnt from the copy afterwards.
void AskAsEachProxy(RegistryCopy& copy, std::vector<ListedApplication>& applications);

} // namespace kestraboot::tools
