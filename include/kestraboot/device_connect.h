/// @file
/// The device-connect service: starts the trackers and hands each qualifying arrival to the host.
///
/// | kind word | comes from |
/// |---|---|
/// | `volume` | the volume tracker: a readable card or drive with a supported file on it; plugins |
/// | `camera`, `scanner` | the WIA and still-image trackers; plugins |
/// | `mobile`, `video`, `audio`, `archive`, `unknown` | plugins |
/// | (empty) | a TWAIN source that is neither camera nor scanner |
#pragma once

#include "kestraboot/export.h"

#include <string>

/// Receives one arrival: its kind, a word of the table in device_connect.h, and the device's identifier
/// in the form of the tracker that found it.
///
/// | who reports it | the identifier is | characters |
/// |---|---|---|
/// | the volume tracker | the drive, "E:" | 2 |
/// | the still-image tracker, of TWAIN | the source's name **with double quotes round it** | up to 257 |
/// | the still-image tracker, of WIA (Windows XP) | still imaging's name of the device | up to 259 |
/// | a plugin | what stands in its record | up to 259 |
/// | the WIA tracker | WIA's name of the device, **whole** | no limit |
///
/// Of a TWAIN source that is neither camera nor scanner, whose kind is empty, the first quote and the
/// first letter are missing; the last quote is there.
///
/// A `camera` or `scanner` can come from any of the last four: look at the length before you copy an
/// identifier into a buffer. It may be empty.
///
/// **Ownership.** Both strings belong to the tracker and live for the call only: copy what you keep.
/// They may be changed; nobody reads them afterwards.
///
/// **Threads.** Runs on the thread that reports: a tracker's, or a thread that a plugin made, with
/// whatever stack, message queue and COM apartment the plugin gave it. One thread at a time in the whole
/// process; a slow callback holds up every other report, and no report is dropped for it. Do not wait in
/// it for another report. The lock lets its own thread in again: where a callback serves messages (a
/// dialog, a call into another COM apartment), its tracker or plugin can report again on that thread,
/// and the callback is called a second time inside the first call. It may register another callback. It
/// may use a handler object of its own; one that the main thread uses needs a lock of the host's.
///
/// **Failures.** A C++ exception that it throws is swallowed, and the tracker goes on.
using DeviceConnectCallback = void (*)(std::wstring& deviceKind, std::wstring& deviceId);

extern "C" {

/// Starts the trackers that suit the running version of Windows, each on a thread of its own, and
/// returns at once: volumes and still-image devices on 5.0, 5.1 and 6.0 workstation, WIA on 5.1 and 6.0
/// workstation, device plugins everywhere. The version is the one that Windows tells this process.
///
/// **Call it once in a process**, after TakeControl(), which sets the folder below which plugins are
/// looked for: a second call starts a second set of trackers and renews the lock under the first.
///
/// **Lifetime.** There is no stop; the trackers run until the process ends, so the library must stay
/// loaded until then. End the process by `TerminateProcess` on itself: no destructor runs under a
/// tracker, and nothing waits for what a tracker's thread holds. `ExitProcess` can wait for ever.
///
/// **Effects.** The trackers make hidden windows and enter COM on their own threads, load "sti.dll",
/// "twain_32.dll" and the plugins, and take a look at the files of volumes that arrive. For such a
/// volume they read "SniffDepth" and the supported formats, and **maintain the order, which can end the
/// process** (CKestraBootInformationHandler::MaintainOrder()). No application is started but by the
/// callback. One program is: with no compatible application left, the volume tracker's thread starts the
/// legacy organiser's device-connect program, where there is one, before it ends the process.
///
/// **Failures** are absorbed: a tracker that cannot start reports nothing. What went wrong stands on the
/// debugger output.
KESTRABOOT_API void StartDeviceConnectService();

/// Stores the callback in place of the one before. May be called before or after the start, from any
/// thread and from the callback itself; takes no lock and does not wait: a call of the callback before
/// that has begun goes on. Arrivals while none is registered are dropped, not kept for later.
///
/// @param[in] callback null unregisters
KESTRABOOT_API void RegisterDeviceConnectCallback(DeviceConnectCallback callback);
}
