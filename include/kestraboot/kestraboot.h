// The whole exported interface of kestraboot.dll.
//
// Strings, vectors and exceptions cross the boundary of the DLL: a host must be built with the same
// compiler family as the library and share its C++ runtime as a DLL (the package ships it).
#pragma once

#include "kestraboot/application_info.h"    // IWYU pragma: export
#include "kestraboot/command_handler.h"     // IWYU pragma: export
#include "kestraboot/device_connect.h"      // IWYU pragma: export
#include "kestraboot/information_handler.h" // IWYU pragma: export
#include "kestraboot/version.h"             // IWYU pragma: export
