// The older photo organiser, Corvane Vellumry 3.0, which predates the registry of compatible
// applications. It is detected by its own installation key and described in memory, never stored.
#pragma once

#include "kestraboot/application_info.h"

namespace kestraboot
{

/// Fills `record` with the organiser. False, with `record` unchanged, if it is not installed. Its
/// files need not exist. KeyPath and the flags are never changed.
[[nodiscard]] bool ReadOrganiserInfo(appInfo_tag& record);

} // namespace kestraboot
