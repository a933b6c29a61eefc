// The user's choices, and the actions on them. The library keeps the list.
#pragma once

#include "launch_request.h"

#include <kestraboot/kestraboot.h>

#include <string>
#include <vector>

/// One row of the chooser.
struct Choice {
    appInfo_tag application;
    bool isOrganiser = false;  ///< the legacy organiser, which is started in a way of its own
    bool canBeDefault = false; ///< the library knows applications by name: only the first of a name can
    std::wstring title;        ///< the name, distinguished from others of the same name
};

/// Reads the registry afresh.
std::vector<Choice> ListChoices(CKestraBootCommandHandler& library);

/// Whether the choice, made from an earlier list, can still be started.
bool IsStillThere(CKestraBootCommandHandler& library, const Choice& choice);

/// Makes it the only default. False if that could not be stored. The choice must still exist: the
/// library exits the process if no application is left.
bool MakeDefault(CKestraBootCommandHandler& library, const Choice& choice);

/// Starts it for the device of the request.
void Start(CKestraBootCommandHandler& library, const Choice& choice, const LaunchRequest& request);
