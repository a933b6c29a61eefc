// boot_actions.dll: custom actions for what kestraboot.exe has no switch for. They end a running boot
// program without a hand-over, so that an upgrade can replace its files, and start one as the user.
//
// Both get their data as "BOOTSTART|PATH OF THE BOOT PROGRAM", in the property "BootProgram" or,
// deferred, in the action's own. What they did stands in the installer's log, after "kestraboot: ". No
// exception can leave them that the installer would have to understand: out of memory ends its helper
// process, and the installation rolls back.
#pragma once

#include <windows.h>

#include <msi.h>

/// Ends each process of the program, in whatever session, as far as this account may: by its window, or
/// else the hard way. Always succeeds: where one cannot be ended, the installer finds its files in use.
extern "C" __declspec(dllexport) UINT __stdcall EndBootProgram(MSIHANDLE install);

/// Starts the program as the user, or not at all (BOOTSTART, or a file that was in use). Where another
/// one is in control it ends by itself.
extern "C" __declspec(dllexport) UINT __stdcall StartBootProgram(MSIHANDLE install);

/// Hands what starts at log-on now to RestoreAutoRun.
extern "C" __declspec(dllexport) UINT __stdcall RememberAutoRun(MSIHANDLE install);

/// After a failure: what started at log-on before does so again, or nothing where nothing did.
extern "C" __declspec(dllexport) UINT __stdcall RestoreAutoRun(MSIHANDLE install);
