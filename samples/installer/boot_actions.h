// boot_actions.dll: custom actions for which kestraboot.exe has no switch. They stop a running boot
// program without a hand-over, so that an upgrade can replace its files, and start one as the user.
//
// Both get their data as "BOOTSTART|PATH OF THE BOOT PROGRAM", in the property "BootProgram" or,
// deferred, in the action's own. They write what they did to the installer's log, after "kestraboot: ".
// The installer need not understand their exceptions: if memory runs out, its helper process terminates,
// and the installation rolls back.
#pragma once

#include <windows.h>

#include <msi.h>

/// Stops each process of the program, in every session, as far as this account may: by its window, or by
/// terminating it. Always succeeds: if one cannot be stopped, the installer finds its files in use.
extern "C" __declspec(dllexport) UINT __stdcall EndBootProgram(MSIHANDLE install);

/// Starts the program as the user, or not at all (BOOTSTART, or a file that was in use). If another one
/// is in control, the program exits by itself.
extern "C" __declspec(dllexport) UINT __stdcall StartBootProgram(MSIHANDLE install);

/// Passes the present auto-run entry to RestoreAutoRun.
extern "C" __declspec(dllexport) UINT __stdcall RememberAutoRun(MSIHANDLE install);

/// After a failure: restores the auto-run entry of before, or deletes it if there was none.
extern "C" __declspec(dllexport) UINT __stdcall RestoreAutoRun(MSIHANDLE install);
