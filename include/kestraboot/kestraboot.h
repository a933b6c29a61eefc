/// @file
/// The whole exported interface of kestraboot.dll. A host includes this file alone.

/// @mainpage kestraboot
///
/// The boot and device-connect library of Corvane Kestrafetch. It detects cards, cameras, scanners and
/// phones, reports each to its host, and starts the application that the user chose for it.
///
/// | to | read |
/// |---|---|
/// | write a host | device_connect.h, CKestraBootCommandHandler, CKestraBootInformationHandler |
/// | make an application compatible | application_info.h: the registry keys that its installer writes |
/// | write a device plugin | mox_plugin.h, which needs no other header of this library |
///
/// **Windows.** The library loads on 64-bit Windows from Vista on. It detects cards, cameras and
/// scanners on Windows 2000, XP and Vista, by the version that Windows reports to the process. On
/// Windows 7, 8, 10 and 11 plugins alone report devices, unless a compatibility mode makes Windows
/// report Vista.
///
/// **Compiler.** Strings, vectors and exceptions cross the boundary of the DLL. Build a host with the
/// same compiler family as the library, in any build type, and link the C++ runtime as a DLL; the
/// package contains it. A plugin may be built with any compiler.
///
/// **Two effects that hosts may not expect.** If no compatible application is left,
/// CKestraBootInformationHandler::MaintainOrder() ends the process; several operations call it. Loading
/// the list writes to the registry of the current user. Each operation states whether it does either.
#pragma once

#include "kestraboot/application_info.h"    // IWYU pragma: export
#include "kestraboot/command_handler.h"     // IWYU pragma: export
#include "kestraboot/device_connect.h"      // IWYU pragma: export
#include "kestraboot/information_handler.h" // IWYU pragma: export
#include "kestraboot/version.h"             // IWYU pragma: export
