// The older photo organiser, Corvane Vellumry 3.0, which predates the registry of compatible
// applications: known from its own installation key and described in memory, never stored.
#pragma once

#include "kestraboot/application_info.h"

namespace kestraboot
{

/// Fills `record` with the organiser. False, and `record` untouched, when it is not installed. That its
/// files exist is not required. KeyPath and the flags are not touched.
[[nodiscard]] bool ReadOrganiserInfo(appInfo_tag& record);

} // namespace kestraboot
