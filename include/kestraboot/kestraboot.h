/// @file
/// The whole exported interface of kestraboot.dll; what a host includes.

/// @mainpage kestraboot
///
/// The boot and device-connect library of Corvane Kestrafetch. It watches for cards, cameras, scanners
/// and phones, tells its host of each, and starts the application that the user wants for it.
///
/// | to | read |
/// |---|---|
/// | write a host | device_connect.h, CKestraBootCommandHandler, CKestraBootInformationHandler |
/// | make an application compatible | application_info.h: the registry keys that its installer writes |
/// | write a device plugin | mox_plugin.h, which stands alone |
///
/// Strings, vectors and exceptions cross the boundary of the DLL: a host must be built with the same
/// compiler family as the library, in any build type, and share its C++ runtime as a DLL (the package
/// ships it). A plugin may be built with any compiler.
///
/// What can surprise: one operation, CKestraBootInformationHandler::MaintainOrder(), ends the process
/// when no compatible application is left, and others call it. Loading the list writes to the registry
/// of the current user. Both are said wherever they apply.
#pragma once

#include "kestraboot/application_info.h"    // IWYU pragma: export
#include "kestraboot/command_handler.h"     // IWYU pragma: export
#include "kestraboot/device_connect.h"      // IWYU pragma: export
#include "kestraboot/information_handler.h" // IWYU pragma: export
#include "kestraboot/version.h"             // IWYU pragma: export
