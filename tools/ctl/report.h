// Everything that kestractl shows.
#pragma once

#include "kestraboot/application_info.h"
#include "tools/ctl/left_out.h"

#include <optional>
#include <string>
#include <vector>

namespace kestraboot::tools
{

/// An application in the library's list.
struct ListedApplication {
    appInfo_tag info;
    bool mayLaunch = true; ///< the launch status that its proxy gets
    std::wstring locale;   ///< that its proxy gets
    bool localeStored = false;
    ApplicationKey key; ///< as it was before the library loaded
};

/// An application that is registered but not listed.
struct LeftOutApplication {
    ApplicationKey key;
    std::vector<Reason> reasons;
};

/// The application that an arrival starts with the present registry.
struct NextLaunch {
    std::wstring application; ///< its name
    std::wstring mode;

    friend bool operator==(const NextLaunch&, const NextLaunch&) = default;
};

struct Report {
    std::vector<ListedApplication> applications; ///< in the library's order
    std::vector<std::wstring> defaults;          ///< names, in the same order
    std::vector<LeftOutApplication> leftOut;
    // Nothing is started if there is none. For a user without preferences the library creates them
    // when it loads, and they hide the machine's default: the second loading can find another one.
    std::optional<NextLaunch> next;       ///< by the first loading: for a camera, scanner or phone
    std::optional<NextLaunch> nextOfCard; ///< by the second one: the search of a card loads too

    std::optional<std::wstring> autoRun;            ///< as stored
    bool autoRunExists = false;                     ///< the file that it names
    std::optional<std::wstring> autoRunApplication; ///< whose proxy it is

    std::optional<appInfo_tag> organiser;
};

} // namespace kestraboot::tools
